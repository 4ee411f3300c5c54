// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

/// A directory that stands for the root of a machine, with the files that a test puts there.
class FixtureRoot
{
public:
    QString path() const { return m_directory.path(); }

    QString filePath(const QString& relative) const { return m_directory.filePath(relative); }

    /// Writes one file and makes its directories; false where that failed.
    bool write(const QString& relative, const QByteArray& content,
               QFile::Permissions permissions = QFile::ReadOwner | QFile::WriteOwner) const
    {
        const QString path = filePath(relative);
        QFile file(path);
        return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
               file.write(content) == content.size() && file.setPermissions(permissions);
    }

    bool writeProgram(const QString& relative) const
    {
        return write(relative, QByteArrayLiteral("#!/bin/true\n"),
                     QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    /// A link as "/proc/<pid>/exe" is one: its target need not exist.
    bool link(const QString& relative, const QString& target) const
    {
        QDir().mkpath(QFileInfo(filePath(relative)).path());
        return QFile::link(target, filePath(relative));
    }

private:
    QTemporaryDir m_directory;
};
