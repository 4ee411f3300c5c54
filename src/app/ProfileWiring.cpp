// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ProfileWiring.h"

#include "base/Log.h"
#include "profiles/ProfileDeletion.h"
#include "profiles/ProfileManager.h"
#include "stats/Collector.h"
#include "storage/Settings.h"
#include "ui/TrayIcon.h"

ProfileWiring::ProfileWiring(ProfileManager& profiles, Collector& collector, TrayIcon& tray,
                             QObject* parent)
    : QObject(parent)
    , m_profiles(profiles)
    , m_tray(tray)
    , m_deletion(new ProfileDeletion(profiles, this))
{
    connect(&profiles, &ProfileManager::signalNeedFlush, &collector, &Collector::flush);
    // Queued: the tray makes its menu anew, and an entry of it may be what is being chosen.
    connect(&profiles, &ProfileManager::signalProfilesChanged, this, &ProfileWiring::refreshTray,
            Qt::QueuedConnection);
    connect(&profiles, &ProfileManager::signalActiveStatsProfileChanged, this,
            &ProfileWiring::refreshTray, Qt::QueuedConnection);
    connect(&tray, &TrayIcon::profileRequested, &profiles, &ProfileManager::setActiveStatsProfile);
    connect(m_deletion, &ProfileDeletion::finished, this, &ProfileWiring::tellResult);
    refreshTray();
}

void ProfileWiring::refreshTray()
{
    m_tray.setProfiles(m_profiles.profiles(), m_profiles.getActiveStatsProfileId());
}

void ProfileWiring::resetToDefault(const char* reason)
{
    if (m_profiles.getActiveStatsProfileId() != ProfileManager::DefaultProfileId &&
        Settings::instance().value(SettingsKeys::ProfilesResetOnSleep)) {
        Log::info("Resetting to default profile because {} and the setting is enabled.", reason);
        m_profiles.activateDefaultProfile();
    }
}

void ProfileWiring::tellResult(ProfileFold::Result result)
{
    switch (result) {
    case ProfileFold::Result::Deleted:
        return;
    case ProfileFold::Result::Cancelled:
        m_tray.showMessage(tr("Profile not deleted"),
                           tr("The deletion was cancelled. The profile is as it was."));
        return;
    case ProfileFold::Result::Failed:
        m_tray.showMessage(tr("Profile not deleted"),
                           tr("The database could not store it, and the profile is as it was. Make "
                              "sure that there is space on the disk and that no other program "
                              "uses the database, then try again."));
    }
}
