// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/Stat.h"

#include <QTimer>

/// What the statistics of the network share. Traffic is watched while at least one of them is on.
/// Each takes its own quantity in its normal update.
///
/// One that is off takes its quantity too, and drops it: it would otherwise pile up, and hold whom
/// this machine talked to, for as long as the network is watched for another. Thread: main.
class NetworkStat : public Stat
{
    Q_OBJECT

public:
    NetworkStat(AbstractSystem* system, QObject* parent);

    int getUpdateMilliSecondMod() const override;
    int getUpdateMilliSecondModUI() const override;
    int getFrequentUpdateMilliSecond() const override;
    int getFrequentUpdateMilliSecondUI() const override;
    int getInfrequentUpdateMilliSecond() const override;
    void onEnabled() override;
    void onDisabled() override;

private:
    /// Takes what was gathered, and drops it.
    virtual void discardGathered() = 0;

    QTimer m_discard; ///< Runs while this is off.
};
