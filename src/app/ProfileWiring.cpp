// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ProfileWiring.h"

#include "profiles/ProfileManager.h"
#include "stats/Collector.h"
#include "ui/TrayIcon.h"

ProfileWiring::ProfileWiring(ProfileManager& profiles, Collector& collector, TrayIcon& tray,
                             QObject* parent)
    : QObject(parent)
    , m_profiles(profiles)
    , m_tray(tray)
{
    connect(&profiles, &ProfileManager::signalNeedFlush, &collector, &Collector::flush);
    // Queued: the tray makes its menu anew, and an entry of it may be what is being chosen.
    connect(&profiles, &ProfileManager::signalProfilesChanged, this, &ProfileWiring::refreshTray,
            Qt::QueuedConnection);
    connect(&profiles, &ProfileManager::signalActiveStatsProfileChanged, this,
            &ProfileWiring::refreshTray, Qt::QueuedConnection);
    connect(&tray, &TrayIcon::profileRequested, &profiles, &ProfileManager::setActiveStatsProfile);
    refreshTray();
}

void ProfileWiring::refreshTray()
{
    m_tray.setProfiles(m_profiles.profiles(), m_profiles.getActiveStatsProfileId());
}
