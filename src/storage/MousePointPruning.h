// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>

class Database;
class Settings;

/// Deletes the mouse heat map's data older than three months, once a day. When that last happened
/// is kept in the setting `last_prune_mousepoints`. Thread: main.
class MousePointPruning
{
public:
    MousePointPruning(Database& database, Settings& settings);

    /// Reads when data was last pruned; a client that never did so counts from `now`.
    void start(const QDateTime& now);

    /// Prunes where a day has passed since the last time. Returns whether it did.
    bool pruneMousePoints(const QDateTime& now);

private:
    void setLastPruning(const QDateTime& time);

    Database& m_database;
    Settings& m_settings;
    QDateTime m_lastPruning;
};
