// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "profiles/ProfileFold.h"

#include <QObject>

class Collector;
class ProfileDeletion;
class ProfileManager;
class TrayIcon;

/// Connects the profiles with those who count and show them: the tray switches them, and what was
/// counted is written before it would be filed under another one. Thread: main.
class ProfileWiring : public QObject
{
    Q_OBJECT

public:
    /// The three outlive this object.
    ProfileWiring(ProfileManager& profiles, Collector& collector, TrayIcon& tray,
                  QObject* parent = nullptr);

    /// Goes back to the default profile, where the setting wants it; `reason` is logged.
    void resetToDefault(const char* reason);

    /// Deletes profiles at the user's wish; whoever shows its progress connects with it.
    ProfileDeletion& deletion() const { return *m_deletion; }

private:
    void refreshTray();
    void tellResult(ProfileFold::Result result);

    ProfileManager& m_profiles;
    TrayIcon& m_tray;
    ProfileDeletion* m_deletion;
};
