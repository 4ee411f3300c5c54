// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

#include <functional>

/// Gives what was counted under one profile to the default profile.
namespace ProfileFold {

/// A table of which the default profile takes over the rows.
struct Table
{
    QString name;
    QStringList keys;   ///< Beside `profile_id`, what makes a row unique.
    QStringList values; ///< What is added up.
};

enum class Result
{
    Deleted,
    Cancelled, ///< Given up on purpose; the profile is as it was.
    Failed,    ///< As `Cancelled`, since a statement failed (logged).
};

/// Told the percentage done, 0 to 100, which only grows; false gives up. Called every few thousand
/// rows, on the thread of the connection.
using Watch = std::function<bool(int percent)>;

const QList<Table>& tables();

/// Each row of the profile becomes one of the default profile; where that has a row of the same
/// key, their values are added up, and every other column is that of the folded profile. Rows of
/// tables that are not listed stay as they are. Then the profile itself goes, and the list counts
/// as changed. All of it is one transaction.
///
/// The settings' cache is not told. Thread: that of the connection.
Result deleteProfile(const QSqlDatabase& connection, int profileId, const Watch& watch);

} // namespace ProfileFold
