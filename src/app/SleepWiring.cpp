// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SleepWiring.h"

#include "app/ProfileWiring.h"
#include "stats/Collector.h"
#include "system/AbstractSystem.h"
#include "system/PowerMonitor.h"

SleepWiring::SleepWiring(const Parts& parts, QObject* parent)
    : QObject(parent)
    , m_parts(parts)
{
    connect(&m_parts.power, &PowerMonitor::suspended, this, &SleepWiring::suspend);
    connect(&m_parts.power, &PowerMonitor::resumed, this,
            [this] { m_parts.system.onSystemResume(); });
}

void SleepWiring::suspend()
{
    m_parts.collector.flush(); // What was counted until now belongs to the profile until now.
    m_parts.profiles.resetToDefault("we're going to sleep");
    m_parts.system.onSystemSuspend();
}
