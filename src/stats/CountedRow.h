// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/DSqlQuery.h"

#include <QObject>
#include <QString>
#include <QVariant>

#include <initializer_list>
#include <optional>

/// A row that counts something: one statement adds to it, another creates it where there is none
/// yet. Both are prepared at construction, and once more after the database was opened anew; values
/// are bound in the order of their question marks. A statement that fails is in the log, and is not
/// tried again. Thread: main.
class CountedRow final
{
public:
    using Values = std::initializer_list<QVariant>;

    CountedRow(const QString& updateSql, const QString& insertSql);

    /// Updates the row, and inserts it where the update found none. The database must be open.
    void add(Values updateValues, Values insertValues);

private:
    /// The statements on one opening of the database.
    struct Statements
    {
        Statements(const QString& updateSql, const QString& insertSql);

        DSqlQuery update;
        DSqlQuery insert;
    };

    static bool run(DSqlQuery& statement, Values values);
    void prepare();

    QString m_updateSql;
    QString m_insertSql;
    std::optional<Statements> m_statements; ///< None while the database is closed.
    QObject m_context;                      ///< Ends the connection to the database's signal.
};
