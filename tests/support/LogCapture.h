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
    }

    ~LogCapture()
    {
        Log::setLevel(Log::Level::Info);
        Log::stop();
    }

    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QString text() const
    {
        Log::flush();
        QFile file(m_directory.filePath(QStringLiteral("app.log")));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    bool contains(const QString& line) const { return text().contains(line); }

private:
    QTemporaryDir m_directory;
};
