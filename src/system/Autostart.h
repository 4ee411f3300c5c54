// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The client's entry among the programs that the desktop starts at log-in (freedesktop.org's
/// Desktop Application Autostart Specification): "$XDG_CONFIG_HOME/autostart/tallyvane.desktop".
/// Thread: main.
class Autostart
{
public:
    /// `executable` is the absolute path of the program to start.
    explicit Autostart(const QString& executable);

    /// Brings the entry in line with the setting: written, or gone. Where the system has an entry
    /// of the same name for all users, switching off leaves one that hides it. A file that already
    /// says so is not touched. Returns false, and logs why, where the file could not be changed.
    bool follow(bool launchOnStart) const;

    /// The entry's file, whether or not it exists.
    static QString filePath();

private:
    QString m_executable;
};
