// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Log.h"

#include <QFile>
#include <QString>
#include <QTemporaryDir>

/// Collects what is logged while it lives, at the given level.
class LogCapture
{
public:
    explicit LogCapture(Log::Level level = Log::Level::Info)
    {
        Log::start(m_directory.path());
        Log::setLevel(level);
        // Opened now, it can be read later by whichever user the test has become.
        m_file.setFileName(m_directory.filePath(QStringLiteral("app.log")));
        (void)m_file.open(QIODevice::ReadOnly);
    }

    ~LogCapture() { Log::stop(); }

    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QString text() const
    {
        Log::flush();
        return m_file.seek(0) ? QString::fromUtf8(m_file.readAll()) : QString();
    }

    qsizetype count(const QString& line) const { return text().count(line); }

    bool contains(const QString& line) const { return text().contains(line); }

private:
    QTemporaryDir m_directory;
    mutable QFile m_file;
};
