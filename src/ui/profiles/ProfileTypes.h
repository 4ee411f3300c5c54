// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

/// What the Profiles view shows. Plain values.

struct ProfileEntry
{
    int id = 0; ///< 0 is the default profile.
    QString name{};
    bool isActive = false; ///< Counts are filed under it now.
    QDateTime created{};   ///< Local; invalid for the default profile.
};

struct MilestoneEntry
{
    qint64 id = 0; ///< 0 for one that is to be added.
    QString name{};
    QString type{}; ///< As stored: "Keys".
    qint64 amount = 0;
    bool isActive = true;
    QString message{};   ///< Shown in place of the usual text; may be empty.
    QDateTime lastHit{}; ///< Local; invalid where it was never hit.
    qint64 base = 0;     ///< The total at the last hit.
    qint64 total = 0;    ///< The present one.
};

struct MilestoneHit
{
    QString name{};
    QDateTime time{}; ///< Local.
    QString type{};
    qint64 amount = 0;
    qint64 total = 0;
};
