// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

class Database;

/// The all-time totals that milestones count by, each asked of the database once in the life of
/// this object: for one check, or one drawing of a list. Thread: main.
class MilestoneTotals
{
public:
    explicit MilestoneTotals(Database* database);

    /// The values of `stats_type`, in the order in which they are offered.
    static QStringList types();

    static bool isKnown(const QString& type);

    /// The total of a known type, in its unit; null (logged) where the database gave none.
    std::optional<qint64> current(const QString& type);

private:
    Database* m_database;
    QHash<QString, std::optional<qint64>> m_totals;
};
