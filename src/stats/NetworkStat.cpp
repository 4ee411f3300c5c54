// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/NetworkStat.h"

#include "system/AbstractSystem.h"

namespace {

constexpr int UpdateMs = 60'000;

} // namespace

NetworkStat::NetworkStat(AbstractSystem* system, QObject* parent)
    : Stat(system, parent)
    , m_discard(this)
{
    m_discard.setTimerType(Qt::VeryCoarseTimer);
    m_discard.setInterval(UpdateMs);
    connect(&m_discard, &QTimer::timeout, this, &NetworkStat::discardGathered);
    m_discard.start();
}

int NetworkStat::getUpdateMilliSecondMod() const
{
    return UpdateMs;
}

int NetworkStat::getUpdateMilliSecondModUI() const
{
    return 1'000;
}

int NetworkStat::getFrequentUpdateMilliSecond() const
{
    return 5'000;
}

int NetworkStat::getFrequentUpdateMilliSecondUI() const
{
    return 1'000;
}

int NetworkStat::getInfrequentUpdateMilliSecond() const
{
    return 60'000;
}

void NetworkStat::onEnabled()
{
    // The capture may have gone on for another statistic: what crossed the network while this one
    // was off is not counted.
    m_discard.stop();
    discardGathered();
    system().acquireNetworkTrafficMonitor();
}

void NetworkStat::onDisabled()
{
    system().releaseNetworkTrafficMonitor();
    m_discard.start();
}
