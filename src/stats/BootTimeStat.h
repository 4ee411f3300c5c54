// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/Stat.h"

/// Records each boot of the machine once, in the table `uptimes`. Thread: main.
class BootTimeStat : public Stat
{
    Q_OBJECT

public:
    /// `Database` must exist.
    BootTimeStat(AbstractSystem* system, QObject* parent);

    int getUpdateMilliSecondMod() const override;
    int getUpdateMilliSecondModUI() const override;
    int getFrequentUpdateMilliSecond() const override;
    int getFrequentUpdateMilliSecondUI() const override;
    int getInfrequentUpdateMilliSecond() const override;
    void onEnabled() override;
    void onDisabled() override;

    /// Acts once in the life of this object, and once more after the table was emptied.
    void doInfrequentUpdate(QDateTime now, bool ui) override;

    /// Adds the current boot, unless its row is there, or one of the last 30 seconds. Does nothing
    /// while switched off.
    void addCurrentBootTime();

private:
    bool m_recorded = false;
    bool m_running = true;
};
