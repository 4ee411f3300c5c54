// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/FiguresModel.h"
#include "ui/account/AccountState.h"

/// What the account view shows, as rows of tables. Thread: main.
namespace AccountTables {

enum CountsColumn
{
    FigureColumn,
    UnzurgedColumn,
    TotalColumn,
    RankColumn,
};

enum ZurgesColumn
{
    TimeColumn,
    OriginColumn,
    OutcomeColumn,
    KeysColumn,
    ClicksColumn,
};

enum BackupsColumn
{
    MadeColumn,
    SizeColumn,
};

QList<FiguresModel::Column> countsColumns();

/// One row to each quantity, the distance in the user's units; a rank of 0 stays empty.
QList<FiguresModel::Row> counts(const UnzurgedCounts& unzurged, const OnlineTotals& totals,
                                const OnlineRanks& ranks);

QList<FiguresModel::Column> zurgesColumns();
QList<FiguresModel::Row> zurges(const QList<ZurgeRecord>& records);

QList<FiguresModel::Column> backupsColumns();
QList<FiguresModel::Row> backups(const QList<OnlineBackup>& backups);

} // namespace AccountTables
