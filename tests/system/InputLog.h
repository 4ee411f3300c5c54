// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Log.h"

#include <QFile>
#include <QTemporaryDir>

/// The application log, in a directory of its own for as long as this object lives.
class InputLog final
{
public:
    explicit InputLog(Log::Level level = Log::Level::Info)
    {
        Log::start(m_directory.path());
        Log::setLevel(level);
        // Opened now, it can be read later by whichever user the test has become.
        m_file.setFileName(m_directory.filePath(QStringLiteral("app.log")));
        (void)m_file.open(QIODevice::ReadOnly);
    }

    InputLog(const InputLog&) = delete;
    InputLog& operator=(const InputLog&) = delete;

    ~InputLog() { Log::stop(); }

    qsizetype count(const QString& text) const
    {
        Log::flush();
        return m_file.seek(0) ? QString::fromUtf8(m_file.readAll()).count(text) : -1;
    }

    bool contains(const QString& text) const { return count(text) > 0; }

private:
    QTemporaryDir m_directory;
    mutable QFile m_file;
};
