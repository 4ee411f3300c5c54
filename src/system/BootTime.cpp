// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/BootTime.h"

#include "base/Log.h"
#include "system/ProcText.h"

#include <QSaveFile>

BootTime::BootTime(const QString& root, const QString& dataDirectory)
    : m_root(root)
    , m_file(dataDirectory + QStringLiteral("/boot-time"))
{
}

QDateTime BootTime::value()
{
    if (!m_value) {
        m_value = determine();
    }
    return *m_value;
}

QDateTime BootTime::determine() const
{
    const QString bootId = QString::fromLatin1(
        ProcText::read(m_root.filePath(QStringLiteral("proc/sys/kernel/random/boot_id")))
            .trimmed());
    QDateTime kept = keptFor(bootId);
    if (kept.isValid()) {
        return kept;
    }
    const auto seconds =
        ProcText::bootSeconds(ProcText::read(m_root.filePath(QStringLiteral("proc/stat"))));
    if (!seconds) {
        return {};
    }
    QDateTime time = QDateTime::fromSecsSinceEpoch(*seconds);
    if (!bootId.isEmpty()) {
        keep(bootId, time);
    }
    return time;
}

QDateTime BootTime::keptFor(const QString& bootId) const
{
    const QStringList lines = QString::fromLatin1(ProcText::read(m_file)).split(QLatin1Char('\n'));
    return !bootId.isEmpty() && lines.size() >= 2 && lines.at(0) == bootId
               ? QDateTime::fromString(lines.at(1), Qt::ISODate)
               : QDateTime();
}

void BootTime::keep(const QString& bootId, const QDateTime& time) const
{
    QSaveFile file(m_file);
    const QString text = QStringLiteral("%1\n%2\n").arg(bootId, time.toString(Qt::ISODate));
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toLatin1()) < 0 || !file.commit()) {
        Log::warn("Unable to keep the boot time in {}: {}", m_file, file.errorString());
    }
}
