// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/CountedRow.h"
#include "stats/NetworkStat.h"
#include "stats/UnownedTraffic.h"

/// Files the bytes of each application, by hour and profile, and by second. Traffic whose owner is
/// not known yet waits for a later update. Thread: main.
class ApplicationBandwidthStat : public NetworkStat
{
    Q_OBJECT

public:
    /// Prepares its statements; `Database`, `LocalStats` must exist.
    ApplicationBandwidthStat(AbstractSystem* system, QObject* parent);

    void onDisabled() override;
    void doUpdate(QDateTime now, bool ui) override;

    /// Forgets the seconds that are more than an hour ago.
    void doInfrequentUpdate(QDateTime now, bool ui) override;

private:
    void discardGathered() override;
    ApplicationTraffic takeAttributed(const QDateTime& now);
    void file(const ApplicationInProfile& application, const NetworkTraffic& traffic, int hour);

    CountedRow m_hour;
    PreparedStatement m_insertSecond;
    PreparedStatement m_trimSeconds;
    UnownedTraffic m_unowned;
};
