// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <spdlog/fmt/fmt.h>

#include <string_view>
#include <utility>

/// Lets a `QString` stand in a log line's format, as "{}".
template <>
struct fmt::formatter<QString> : fmt::formatter<std::string_view>
{
    template <typename Context>
    auto format(const QString& text, Context& context) const
    {
        const QByteArray utf8 = text.toUtf8();
        return fmt::formatter<std::string_view>::format(
            std::string_view(utf8.constData(), static_cast<size_t>(utf8.size())), context);
    }
};

/// The application log: "app.log" in the data directory and, beside it, standard error.
///
/// Lines are short English sentences: `Log::info("Database size: {}", bytes)`. Below the level in
/// force nothing is formatted. Any thread; before `start` and after `stop` lines go nowhere.
///
/// What is typed stays out of it: a key's identity is logged at trace level only.
namespace Log {

enum class Level
{
    Trace,
    Debug,
    Info,
    Warn,
    Error,
    Fatal,
    Off,
};

/// Begins to log at level info to `directory`/app.log (mode 0600; rotated at 5 MiB, 3 old files
/// kept) and to standard error. Where the file cannot be opened, standard error says so and serves
/// alone. `directory` must exist. Main thread.
void start(const QString& directory);

/// Writes out what is held and closes the file. Main thread; lines that other threads still log
/// meanwhile are written whole or not at all.
void stop();

/// Writes out what is held; for the moments before the process ends without returning.
void flush();

/// The lowest level that is logged, from the next line on. Between `start` and `stop`.
void setLevel(Level level);
bool isEnabled(Level level);

/// Writes one line. Line feeds and other control characters in it are written as "\n" or "\x1b", so
/// that a name from outside (a window, a device, a file) cannot forge a line.
void write(Level level, std::string_view line);

/// Sends Qt's own messages into the log, each with its file, line and function. Those that begin
/// with "QFont::setPointSize" are dropped: a style emits that warning many times a second, to no
/// use.
void installQtMessageHandler();

template <typename... Args>
void log(Level level, fmt::format_string<Args...> format, Args&&... args)
{
    if (isEnabled(level)) {
        write(level, fmt::format(format, std::forward<Args>(args)...));
    }
}

template <typename... Args>
void trace(fmt::format_string<Args...> format, Args&&... args)
{
    log(Level::Trace, format, std::forward<Args>(args)...);
}

template <typename... Args>
void debug(fmt::format_string<Args...> format, Args&&... args)
{
    log(Level::Debug, format, std::forward<Args>(args)...);
}

template <typename... Args>
void info(fmt::format_string<Args...> format, Args&&... args)
{
    log(Level::Info, format, std::forward<Args>(args)...);
}

template <typename... Args>
void warn(fmt::format_string<Args...> format, Args&&... args)
{
    log(Level::Warn, format, std::forward<Args>(args)...);
}

template <typename... Args>
void error(fmt::format_string<Args...> format, Args&&... args)
{
    log(Level::Error, format, std::forward<Args>(args)...);
}

template <typename... Args>
void fatal(fmt::format_string<Args...> format, Args&&... args)
{
    log(Level::Fatal, format, std::forward<Args>(args)...);
}

} // namespace Log
