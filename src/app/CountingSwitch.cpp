// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CountingSwitch.h"

#include "stats/AllStats.h"
#include "stats/Collector.h"
#include "stats/Stat.h"
#include "storage/Database.h"
#include "storage/Settings.h"
#include "system/AbstractSystem.h"
#include "system/InputAccess.h"

CountingSwitch::CountingSwitch(Database& database, Collector& collector, AbstractSystem& system,
                               QObject* parent)
    : QObject(parent)
    , m_database(database)
    , m_collector(collector)
    , m_system(system)
{
}

InputState CountingSwitch::inputState() const
{
    if (m_database.state() != Database::State::Open) {
        return InputState::ReadOnly;
    }
    if (m_isPaused) {
        return InputState::Paused;
    }
    if (!m_collector.getStat<Stat>(QStringLiteral("KeypressesStat"))->isEnabled()) {
        return InputState::Off;
    }
    if (m_system.hasInputListeners()) {
        return InputState::Reading;
    }
    return hasInputDevices() ? InputState::NoPermission : InputState::NoDevices;
}

void CountingSwitch::followSettings()
{
    m_collector.flush();
    AllStats::followSettings(m_collector,
                             !m_isPaused && m_database.state() == Database::State::Open);
}

void CountingSwitch::hold()
{
    if (m_collector.isCollecting()) {
        m_collector.pauseCollector();
    }
}

void CountingSwitch::release()
{
    if (!m_isPaused && !m_collector.isCollecting()) {
        m_collector.startCollector();
    }
}

void CountingSwitch::pause()
{
    m_isPaused = true;
    hold();
    followSettings();
    Q_EMIT pausedChanged();
}

void CountingSwitch::resume()
{
    m_isPaused = false;
    release();
    followSettings();
    Q_EMIT pausedChanged();
}

void CountingSwitch::storeKeyboardOn()
{
    Settings::instance().setValue(SettingsKeys::StatsInputEnable, true);
    Settings::instance().setValue(SettingsKeys::StatKeyboardEnable, true);
}
