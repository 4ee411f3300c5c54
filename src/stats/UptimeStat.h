// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/CountedRow.h"
#include "stats/Stat.h"

/// Files how long the machine is up, by hour and profile, and keeps the end of the current boot's
/// row up to date. Thread: main.
class UptimeStat : public Stat
{
    Q_OBJECT

public:
    /// Prepares its statements; `Database`, `LocalStats` must exist.
    UptimeStat(AbstractSystem* system, QObject* parent);

    int getUpdateMilliSecondMod() const override;
    int getUpdateMilliSecondModUI() const override;
    int getFrequentUpdateMilliSecond() const override;
    int getFrequentUpdateMilliSecondUI() const override;
    int getInfrequentUpdateMilliSecond() const override;
    void onEnabled() override;
    void onDisabled() override;
    void doUpdate(QDateTime now, bool ui) override;

private:
    PreparedStatement m_extendBoot;
    CountedRow m_hour;
    QDateTime m_lastUpdate = QDateTime::currentDateTime();
    bool m_running = true;
};
