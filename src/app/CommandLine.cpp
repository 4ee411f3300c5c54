// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CommandLine.h"

#include <algorithm>

CommandLine::CommandLine(const QStringList& arguments)
    : m_arguments(arguments.mid(1))
{
}

bool CommandLine::hasAny(std::initializer_list<const char*> spellings) const
{
    return std::any_of(spellings.begin(), spellings.end(), [this](const char* spelling) {
        return m_arguments.contains(QLatin1String(spelling));
    });
}

bool CommandLine::wantsHelp() const
{
    return hasAny({"--help", "-help", "-h"});
}

bool CommandLine::wantsVersion() const
{
    return hasAny({"--version"});
}

bool CommandLine::isVerbose() const
{
    return hasAny({"--verbose", "-verbose"});
}

bool CommandLine::delaysStartup() const
{
    return hasAny({"--delaystartup", "-delaystartup"});
}

bool CommandLine::opensMainWindow() const
{
    return !hasAny({"--closedwindow", "-closedwindow"});
}

bool CommandLine::asksRunningClientToExit() const
{
    return hasAny({"--exit_client", "-exit_client"});
}

bool CommandLine::asksRunningClientToZurge() const
{
    return hasAny({"--zurge", "-zurge"});
}

bool CommandLine::disablesNetworking() const
{
    return hasAny({"--disable-networking", "-disable-networking"});
}

bool CommandLine::isAutoRestart() const
{
    return hasAny({"-auto_restart", "auto_restart"});
}

bool CommandLine::isStartedAtLogin() const
{
    return m_arguments == QStringList{QStringLiteral("onstartup")};
}

std::optional<QString> CommandLine::translationFile() const
{
    const qsizetype option = m_arguments.indexOf(QLatin1String("--translationfile"));
    if (option < 0 || option + 1 >= m_arguments.size()) {
        return std::nullopt;
    }
    return m_arguments.at(option + 1);
}

QStringList CommandLine::helpLines()
{
    return {
        QStringLiteral("Tallyvane client commandline options:"),
        QStringLiteral(" --help                            : Prints this menu."),
        QStringLiteral(" --verbose                         : Be very verbose in the app.log."),
        QStringLiteral(" --delaystartup                    : Wait 5 seconds before actually "
                       "starting the client."),
        QStringLiteral(" --closedwindow                    : Don't open MainWindow on startup.\n"),
        QStringLiteral(" --version                         : Print the software version number.\n"),
        QStringLiteral(" --translationfile ~/yourfile.qm   : Install custom language file.\n"),
        QStringLiteral("Client interactions:"),
        QStringLiteral(" --exit_client  : Exit the already running instance of the client."),
        QStringLiteral(" --zurge        : Send a signal to the already running client to zurge.\n"),
        QStringLiteral(
            " --disable-networking : Disables the start of the networking collections.\n"),
    };
}
