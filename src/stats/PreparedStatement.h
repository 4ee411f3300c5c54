// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/DSqlQuery.h"

#include <QObject>
#include <QString>
#include <QVariant>

#include <initializer_list>
#include <optional>

/// A statement that is prepared at construction, and once more after the database was opened anew.
/// Values are bound in the order of its question marks. A statement that fails is in the log, and
/// is not tried again. Thread: main.
class PreparedStatement final
{
public:
    using Values = std::initializer_list<QVariant>;

    /// The database must be open, here and for every run.
    explicit PreparedStatement(const QString& sql);

    /// False where it failed.
    bool run(Values values);

    /// How many rows the latest run changed.
    int changedRows() const;

    /// Runs a query; true where it answers with a row.
    bool findsRow(Values values);

private:
    void prepare();

    QString m_sql;
    std::optional<DSqlQuery> m_query; ///< None while the database is closed.
    QObject m_context;                ///< Ends the connection to the database's signal.
};
