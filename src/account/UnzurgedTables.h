// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/UnzurgedCounts.h"
#include "storage/DSqlQuery.h"

#include <QSet>

#include <optional>

class Database;

/// The plain copy of the unzurged counts in the tables `unzurged_stats` (one row per counter, and
/// others named "generation", "lineage" and "settled") and `pending_applications_stats` (one row
/// per application). Uptime stands there in whole seconds. Thread: main.
///
/// Neither begins nor ends a transaction: the caller does, and the copy is whole only if it is
/// written inside one.
class UnzurgedTables final
{
public:
    /// Prepares the statements; `database` must be open, and stay so for as long as this object.
    explicit UnzurgedTables(Database* database);

    /// What the tables hold. A value out of range (a negative one, one of 20 digits, a word) is
    /// taken as the nearest count, and logged.
    UnzurgedState load();

    /// The generation of what the tables hold now; nothing where they hold no usable one.
    std::optional<quint64> generation();

    /// Replaces everything in both tables. False where a statement failed: then the generation was
    /// not brought up to date either.
    bool writeAll(const UnzurgedState& state);

    /// Writes the totals and the rows of the `changed` applications. False as above.
    bool writeChanges(const UnzurgedState& state, const QSet<QString>& changed);

private:
    UnzurgedCounts loadTotals();
    QHash<QString, UnzurgedCounts> loadApplications();
    bool writeTotals(const UnzurgedState& state);
    QString loadText(const QString& name);
    bool writeValue(const QString& name, const QString& value);
    bool writeApplication(const QString& path, const UnzurgedCounts& counts);

    DSqlQuery m_selectTotal;
    DSqlQuery m_selectApplications;
    DSqlQuery m_replaceTotal;
    DSqlQuery m_replaceApplication;
    DSqlQuery m_deleteApplications;
};
