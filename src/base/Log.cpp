// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Log.h"

#include <QByteArray>

#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>
#include <sys/stat.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <vector>

namespace {

constexpr size_t RotateAtBytes = 5'242'880;
constexpr size_t OldLogsKept = 3;

/// What is logged; off before `start` and after `stop`. Apart from the logger, so that a line below
/// it costs one read and no lock.
std::atomic<Log::Level> s_level = Log::Level::Off;

/// Held shared while a line is written, alone while the logger changes: a thread that is about to
/// end may still log when the main thread closes the file.
std::shared_mutex s_guard;

/// The logger in use, under `s_guard`; null before `start` and after `stop`.
std::shared_ptr<spdlog::logger> s_logger;

spdlog::level::level_enum spdlogLevel(Log::Level level)
{
    switch (level) {
    case Log::Level::Trace:
        return spdlog::level::trace;
    case Log::Level::Debug:
        return spdlog::level::debug;
    case Log::Level::Info:
        return spdlog::level::info;
    case Log::Level::Warn:
        return spdlog::level::warn;
    case Log::Level::Error:
        return spdlog::level::err;
    case Log::Level::Fatal:
        return spdlog::level::critical;
    case Log::Level::Off:
        break;
    }
    return spdlog::level::off;
}

/// The name in front of a line, with a space after it.
std::string levelName(Log::Level level)
{
    constexpr std::array names{"trace ", "debug ", "info ", "warn ", "error ", "fatal ", ""};
    return names.at(static_cast<size_t>(level));
}

spdlog::sink_ptr fileSink(const QString& path)
{
    spdlog::file_event_handlers handlers;
    // The umask decides what fopen leaves readable; the log may name applications.
    handlers.after_open = [](const spdlog::filename_t&, std::FILE* file) {
        fchmod(fileno(file), S_IRUSR | S_IWUSR);
    };
    return std::make_shared<spdlog::sinks::rotating_file_sink_mt>(path.toStdString(), RotateAtBytes,
                                                                  OldLogsKept, false, handlers);
}

void appendEscaped(std::string& target, char character)
{
    if (character == '\n') {
        target += "\\n";
        return;
    }
    const auto byte = static_cast<unsigned char>(character);
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char del = 0x7f;
    if ((byte < firstPrintable && byte != '\t') || byte == del) {
        target += fmt::format("\\x{:02x}", byte);
        return;
    }
    target += character;
}

Log::Level levelOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return Log::Level::Debug;
    case QtInfoMsg:
        return Log::Level::Info;
    case QtWarningMsg:
        return Log::Level::Warn;
    case QtCriticalMsg:
        return Log::Level::Error;
    case QtFatalMsg:
        break;
    }
    return Log::Level::Fatal;
}

void handleQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (message.startsWith(QLatin1String("QFont::setPointSize"))) {
        return;
    }
    Log::log(levelOf(type), "{} ({}:{}, {})", message, context.file ? context.file : "unknown",
             context.line, context.function ? context.function : "unknown");
}

} // namespace

void Log::start(const QString& directory)
{
    // Written to the stream itself and not through Qt's logging, whose handler leads back here.
    std::vector<spdlog::sink_ptr> sinks{std::make_shared<spdlog::sinks::stderr_sink_mt>()};
    std::string failure;
    try {
        sinks.push_back(fileSink(directory + QStringLiteral("/app.log")));
    } catch (const spdlog::spdlog_ex& exception) {
        failure = exception.what();
    }
    auto logger = std::make_shared<spdlog::logger>("tallyvane", sinks.begin(), sinks.end());
    logger->set_pattern("%Y-%m-%d %H:%M:%S.%e %v");
    logger->set_level(spdlog::level::trace);
    // Line by line: what was written last before a crash is what one wants to read.
    logger->flush_on(spdlog::level::trace);
    {
        const std::unique_lock lock(s_guard);
        s_logger = std::move(logger);
    }
    setLevel(Level::Info);
    if (!failure.empty()) {
        warn("Logging to standard error only: {}", failure);
    }
}

void Log::stop()
{
    qInstallMessageHandler(nullptr);
    setLevel(Level::Off);
    const std::unique_lock lock(s_guard);
    s_logger.reset();
}

void Log::flush()
{
    const std::shared_lock lock(s_guard);
    if (s_logger) {
        s_logger->flush();
    }
}

void Log::setLevel(Level level)
{
    s_level.store(level, std::memory_order_relaxed);
}

bool Log::isEnabled(Level level)
{
    return level >= s_level.load(std::memory_order_relaxed) && level != Level::Off;
}

void Log::write(Level level, std::string_view line)
{
    // A line that ends in a line feed is that line, and no second one.
    if (line.ends_with('\n')) {
        line.remove_suffix(1);
    }
    std::string escaped = levelName(level);
    escaped.reserve(escaped.size() + line.size());
    for (const char character : line) {
        appendEscaped(escaped, character);
    }
    const std::shared_lock lock(s_guard);
    if (s_logger) {
        s_logger->log(spdlogLevel(level), escaped);
    }
}

void Log::installQtMessageHandler()
{
    qInstallMessageHandler(&handleQtMessage);
}
