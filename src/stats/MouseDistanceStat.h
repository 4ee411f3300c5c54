// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/CountedRow.h"
#include "stats/InputStat.h"

/// Files the pointer's travel in inches by hour and profile, in all and per application. Thread:
/// main.
class MouseDistanceStat : public InputStat
{
    Q_OBJECT

public:
    /// Prepares its statements; `Database`, `LocalStats` must exist.
    MouseDistanceStat(AbstractSystem* system, QObject* parent);

    int getUpdateMilliSecondModUI() const override;
    int getFrequentUpdateMilliSecondUI() const override;
    void doFrequentUpdate(QDateTime now, bool ui) override;

private:
    void discardGathered() override;
    void writeApplication(double inches, const Place& place);

    CountedRow m_total;
    PreparedStatement m_updateApplication;
};
