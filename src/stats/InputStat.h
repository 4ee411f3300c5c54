// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/Stat.h"

#include <QString>
#include <QTimer>

/// What the statistics of keyboard and mouse share. Input is read while at least one of them is on.
/// Each takes its own quantity in its frequent update, and keeps no counts between two of them.
///
/// One that is off takes its quantity as often, and drops it: what was typed while nobody counts
/// keys would otherwise stay in memory, in its order, for as long as the mouse is read. Thread:
/// main.
class InputStat : public Stat
{
    Q_OBJECT

public:
    InputStat(AbstractSystem* system, QObject* parent);

    int getUpdateMilliSecondMod() const override;
    int getUpdateMilliSecondModUI() const override;
    int getFrequentUpdateMilliSecond() const override;
    int getFrequentUpdateMilliSecondUI() const override;
    int getInfrequentUpdateMilliSecond() const override;
    void onEnabled() override;
    void onDisabled() override;

protected:
    /// Where the counts of one update belong. Plain value.
    struct Place
    {
        int hour;
        int profileId;
        QString path; ///< The application in front; empty, never null, when unknown.
    };

    Place placeAt(const QDateTime& now) const;

    /// Counts are filed per application at all, and not kept from this one by the user.
    bool mayFilePerApplication(const Place& place) const;

    /// `mayFilePerApplication`, and the application is known.
    bool isFiledPerApplication(const Place& place) const;

private:
    /// Takes what was gathered, and drops it.
    virtual void discardGathered() = 0;

    QTimer m_discard; ///< Runs while this is off.
};
