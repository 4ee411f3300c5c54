// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/applications/ApplicationLooks.h"

#include "ui/Icons.h"

#include <QElapsedTimer>
#include <QFileInfo>

namespace {

constexpr qint64 SliceMs = 8;        ///< Half of what a frame has time for.
constexpr qsizetype MostWanted = 64; ///< More rows than a table shows at once.

} // namespace

ApplicationLooks::ApplicationLooks(const ViewContext& context, QObject* parent)
    : QObject(parent)
    , m_context(context)
    , m_general(Icons::symbol(QStringLiteral("application")))
    , m_excluded(Icons::symbol(QStringLiteral("off")))
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(0);
    connect(&m_timer, &QTimer::timeout, this, &ApplicationLooks::findSome);
}

QString ApplicationLooks::name(const QString& path, const QString& known) const
{
    if (!known.isEmpty()) {
        return known;
    }
    const QString own = m_looks.value(path).name;
    const QString file = QFileInfo(path).fileName();
    return !own.isEmpty() ? own : file.isEmpty() ? path : file;
}

QIcon ApplicationLooks::icon(const QString& path) const
{
    const auto look = m_looks.constFind(path);
    return look == m_looks.constEnd() || look->icon.isNull() ? m_general : look->icon;
}

void ApplicationLooks::want(const QString& path)
{
    if (m_looks.contains(path) || m_wanted.contains(path)) {
        return;
    }
    m_wanted.prepend(path);
    if (m_wanted.size() > MostWanted) {
        m_wanted.removeLast();
    }
    m_timer.start();
}

void ApplicationLooks::findSome()
{
    QElapsedTimer time;
    time.start();
    QStringList paths;
    do {
        const QString path = m_wanted.takeFirst();
        m_looks.insert(
            path, {.name = m_context.applicationName ? m_context.applicationName(path) : QString(),
                   .icon = m_context.applicationIcon ? m_context.applicationIcon(path) : QIcon()});
        paths.append(path);
    } while (!m_wanted.isEmpty() && time.elapsed() < SliceMs);
    if (!m_wanted.isEmpty()) {
        m_timer.start();
    }
    Q_EMIT found(paths);
}
