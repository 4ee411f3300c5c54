// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Application.h"
#include "app/CommandLine.h"
#include "app/QtSingleApplication.h"
#include "app/SecureExecution.h"
#include "base/Log.h"
#include "base/SnapStandardPaths.h"
#include "base/Version.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <span>
#include <string_view>

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds StartupDelay = 5s;
constexpr int MessageTimeoutMs = 5000;
constexpr int Failure = 1;

/// Help and version need no screen, though the application object that reads the arguments does.
void allowHelpWithoutDisplay(std::span<char*> arguments)
{
    const bool asksForText = std::any_of(arguments.begin(), arguments.end(), [](const char* text) {
        const std::string_view argument(text);
        return argument == "--help" || argument == "-help" || argument == "-h" ||
               argument == "--version";
    });
    const auto isSet = [](const char* variable) { return !qEnvironmentVariableIsEmpty(variable); };
    if (asksForText && !isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY") &&
        !isSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
}

void printHelp()
{
    for (const QString& line : CommandLine::helpLines()) {
        qDebug().noquote() << line;
    }
}

void startLogging()
{
    const QString directory = SnapStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    if (!QDir(directory).exists()) {
        qDebug().noquote() << directory + QStringLiteral(" does not exist, creating..");
        SnapStandardPaths::createPrivateDirectory(directory);
    }
    Log::installQtMessageHandler();
    Log::start(directory);
    Log::info("Starting Tallyvane {}...", versionString());
}

/// Whether `path` can be taken as a translation; logs why not.
bool isUsableTranslation(const QString& path)
{
    if (!QFile::exists(path)) {
        Log::error("Translation file does not exist! Exiting.");
        return false;
    }
    if (!path.endsWith(QLatin1String(".qm"), Qt::CaseInsensitive)) {
        Log::error("Translation file should end with a .qm extension! Exiting.");
        return false;
    }
    Log::info("Using a custom translation file: {}", path);
    return true;
}

/// Hands the running client what this start was for. Whether it took the message changes nothing
/// here.
void notifyRunningClient(QtSingleApplication& application, const CommandLine& commandLine)
{
    if (commandLine.asksRunningClientToExit()) {
        Log::info("Sending exit command to running client..");
        application.sendMessage(QStringLiteral("exit_client"), MessageTimeoutMs);
        return;
    }
    if (commandLine.asksRunningClientToZurge()) {
        Log::info("Sending zurge command to running instance");
        application.sendMessage(QStringLiteral("zurge"), MessageTimeoutMs);
        return;
    }
    Log::info("Tallyvane is already running! Sending message to running client to bring up "
              "MainWindow and exiting this instance.");
    application.sendMessage(QStringLiteral("open_window"), MessageTimeoutMs);
}

void waitBeforeStart(const CommandLine& commandLine)
{
    if (commandLine.delaysStartup()) {
        QThread::sleep(StartupDelay.count());
    }
    if (commandLine.isStartedAtLogin()) {
        QThread::sleep(StartupDelay.count());
    }
}

int runApplication(QtSingleApplication& single, const CommandLine& commandLine)
{
    const bool networkingDisabled = commandLine.disablesNetworking();
    if (networkingDisabled) {
        Log::info("Disabling networking due to commandline option!");
    }
    Application application;
    QObject::connect(&single, &QtSingleApplication::messageReceived, &application,
                     &Application::singleAppMessage);
    QObject::connect(&application, &Application::aboutToEnd, &single,
                     &QtSingleApplication::release);
    if (!application.start(networkingDisabled, commandLine.opensMainWindow(),
                           commandLine.translationFile().value_or(QString()))) {
        QCoreApplication::processEvents();
        return Failure;
    }
    return QtSingleApplication::exec();
}

/// The last place where an exception can be told of.
int runGuarded(QtSingleApplication& single, const CommandLine& commandLine)
{
    try {
        return runApplication(single, commandLine);
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "A standard exception was caught, with message '%s'\n",
                     exception.what());
        Log::fatal("A standard exception was caught, with message '{}'", exception.what());
    } catch (...) {
        std::fputs("An unknown exception was caught\n", stderr);
        Log::fatal("An unknown exception was caught");
    }
    return Failure;
}

int run(QtSingleApplication& single, const CommandLine& commandLine)
{
    if (commandLine.isVerbose()) {
        Log::setLevel(Log::Level::Trace);
    }
    const std::optional<QString> translation = commandLine.translationFile();
    if (translation && !isUsableTranslation(*translation)) {
        return Failure;
    }
    if (commandLine.isAutoRestart()) {
        QThread::sleep(StartupDelay.count());
    }
    if (single.isRunning()) {
        notifyRunningClient(single, commandLine);
        return 0;
    }
    waitBeforeStart(commandLine);
    return runGuarded(single, commandLine);
}

} // namespace

int main(int argc, char** argv)
{
    SecureExecution::refuseForeignPlugins(argc, argv);
    qputenv("QT_BEARER_POLL_TIMEOUT", "-1");
    allowHelpWithoutDisplay(std::span(argv, static_cast<size_t>(argc)));
    QtSingleApplication single(QStringLiteral("tallyvane_instance_check"), argc, argv);
    const CommandLine commandLine(QCoreApplication::arguments());
    if (commandLine.wantsHelp()) {
        printHelp();
        return Failure;
    }
    if (commandLine.wantsVersion()) {
        std::printf("%s\n", qPrintable(versionString()));
        return Failure;
    }
    startLogging();
    setlinebuf(stdout);
    setlinebuf(stderr);
    const int code = run(single, commandLine);
    Log::stop();
    return code;
}
