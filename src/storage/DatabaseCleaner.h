// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QStringList>

/// Empties tables at the user's request, all of them or none. Thread: that of the connection.
class DatabaseCleaner
{
public:
    explicit DatabaseCleaner(const QSqlDatabase& connection);

    /// Deletes the statistics and starts today at zero. False where nothing was deleted.
    bool cleanStatistics();

    /// Deletes the statistics and all else that was counted, logged or received; what the user has
    /// set up stays.
    bool cleanEverythingCounted();

private:
    bool clean(const QStringList& tables);
    bool deleteRows(const QStringList& tables);
    bool startTodayAtZero();

    QSqlDatabase m_connection;
};
