// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// What the command line asks for. Arguments are compared whole and with regard to case; unknown
/// ones are ignored, so that an older client still starts from a newer autostart entry.
class CommandLine
{
public:
    /// `arguments` as the process received them, the program's name first.
    explicit CommandLine(const QStringList& arguments);

    bool wantsHelp() const;
    bool wantsVersion() const;
    bool isVerbose() const;
    bool delaysStartup() const;
    bool opensMainWindow() const; ///< Unless the window is to stay closed.
    bool asksRunningClientToExit() const;
    bool asksRunningClientToZurge() const;
    bool disablesNetworking() const;
    bool
    isAutoRestart() const; ///< The client restarts itself and waits for its former self to end.
    bool isStartedAtLogin() const; ///< "onstartup", which counts only as the one argument.

    /// The path after "--translationfile"; none when the option is missing or stands last.
    std::optional<QString> translationFile() const;

    /// The help, line by line. Some lines end in a line feed of their own, which leaves an empty
    /// line between two groups.
    static QStringList helpLines();

private:
    bool hasAny(std::initializer_list<const char*> spellings) const;

    QStringList m_arguments; ///< Without the program's name.
};
