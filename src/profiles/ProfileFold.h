// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

/// Gives what was counted under one profile to the default profile.
namespace ProfileFold {

/// A table of which the default profile takes over the rows.
struct Table
{
    QString name;
    QStringList keys;   ///< Beside `profile_id`, what makes a row unique.
    QStringList values; ///< What is added up.
};

const QList<Table>& tables();

/// Each row of the profile becomes one of the default profile; where that has a row of the same
/// key, their values are added up, and every other column is that of the folded profile. Rows of
/// tables that are not listed stay as they are.
///
/// Runs inside the caller's transaction. False (logged) at the first statement that fails: the
/// caller rolls back. Thread: that of the connection.
bool apply(const QSqlDatabase& connection, int profileId);

} // namespace ProfileFold
