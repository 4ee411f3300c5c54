// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/Autostart.h"

#include "base/Log.h"
#include "system/ExecLine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace {

const QString EntryName = QStringLiteral("autostart/tallyvane.desktop");

/// A value of type string, in which the file format has a backslash begin an escape.
QString escapedValue(const QString& value)
{
    QString escaped = value;
    return escaped.replace(QLatin1Char('\\'), QStringLiteral("\\\\"))
        .replace(QLatin1Char('\n'), QStringLiteral("\\n"));
}

QByteArray startingEntry(const QString& executable)
{
    const QString exec = ExecLine::quoted(executable) + QStringLiteral(" onstartup");
    return QStringLiteral("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=Tallyvane\n"
                          "Icon=tallyvane\n"
                          "Exec=%1\n"
                          "Terminal=false\n")
        .arg(escapedValue(exec))
        .toUtf8();
}

QByteArray hidingEntry()
{
    return QByteArrayLiteral("[Desktop Entry]\nType=Application\nName=Tallyvane\nHidden=true\n");
}

bool write(const QString& path, const QByteArray& content)
{
    QFile present(path);
    if (present.open(QIODevice::ReadOnly) && present.readAll() == content) {
        return true;
    }
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) < 0 || !file.commit()) {
        Log::warn("Unable to write {}: {}", path, file.errorString());
        return false;
    }
    return true;
}

bool remove(const QString& path)
{
    QFile file(path);
    if (file.exists() && !file.remove()) {
        Log::warn("Unable to remove {}: {}", path, file.errorString());
        return false;
    }
    return true;
}

/// Whether an entry of the same name stands in one of the directories for all users.
bool systemHasEntry(const QString& own)
{
    QStringList found = QStandardPaths::locateAll(QStandardPaths::GenericConfigLocation, EntryName);
    found.removeAll(own);
    return !found.isEmpty();
}

} // namespace

Autostart::Autostart(const QString& executable)
    : m_executable(executable)
{
}

bool Autostart::follow(bool launchOnStart) const
{
    const QString path = filePath();
    if (launchOnStart) {
        return write(path, startingEntry(m_executable));
    }
    return systemHasEntry(path) ? write(path, hidingEntry()) : remove(path);
}

QString Autostart::filePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QLatin1Char('/') + EntryName;
}
