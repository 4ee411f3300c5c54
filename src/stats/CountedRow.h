// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/DSqlQuery.h"

#include <QVariant>

#include <initializer_list>

/// A row that counts something: one statement adds to it, another creates it where there is none
/// yet. Both are prepared once; values are bound in the order of their question marks. A statement
/// that fails is in the log, and is not tried again. Thread: main.
class CountedRow final
{
public:
    using Values = std::initializer_list<QVariant>;

    CountedRow(Database* database, const QString& updateSql, const QString& insertSql);

    /// Updates the row, and inserts it where the update found none.
    void add(Values updateValues, Values insertValues);

private:
    static bool run(DSqlQuery& statement, Values values);

    DSqlQuery m_update;
    DSqlQuery m_insert;
};
