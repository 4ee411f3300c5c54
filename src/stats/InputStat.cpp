// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/InputStat.h"

#include "system/AbstractSystem.h"

#include <QTime>

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
    return 5'000;
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
    discardGathered();
    system().acquireInputMonitor();
}

void InputStat::onDisabled()
{
    system().releaseInputMonitor();
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
