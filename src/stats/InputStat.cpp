// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/InputStat.h"

#include "system/AbstractSystem.h"

#include <QTime>

namespace {

constexpr int FrequentMs = 5'000;

} // namespace

InputStat::InputStat(AbstractSystem* system, QObject* parent)
    : Stat(system, parent)
    , m_discard(this)
{
    m_discard.setInterval(FrequentMs);
    connect(&m_discard, &QTimer::timeout, this, &InputStat::discardGathered);
    m_discard.start();
}

int InputStat::getUpdateMilliSecondMod() const
{
    return 60'000;
}

int InputStat::getUpdateMilliSecondModUI() const
{
    return 500;
}

int InputStat::getFrequentUpdateMilliSecond() const
{
    return FrequentMs;
}

int InputStat::getFrequentUpdateMilliSecondUI() const
{
    return 500;
}

int InputStat::getInfrequentUpdateMilliSecond() const
{
    return 60'000;
}

void InputStat::onEnabled()
{
    // The listener may have gone on for another statistic: what was typed or clicked while this one
    // was off is not counted.
    m_discard.stop();
    discardGathered();
    system().acquireInputMonitor();
}

void InputStat::onDisabled()
{
    system().releaseInputMonitor();
    m_discard.start();
}

InputStat::Place InputStat::placeAt(const QDateTime& now) const
{
    const QString path = system().getActiveApplicationPath();
    // A null text would be stored as NULL, which the tables do not take.
    return {now.time().hour(), statsProfileId(), path.isNull() ? QLatin1String("") : path};
}

bool InputStat::mayFilePerApplication(const Place& place) const
{
    return isPerApplication() && !system().shouldExcludeApplicationForStats(place.path);
}

bool InputStat::isFiledPerApplication(const Place& place) const
{
    return !place.path.isEmpty() && mayFilePerApplication(place);
}
