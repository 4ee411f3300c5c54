// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/PreparedStatement.h"

/// A row that counts something: one statement adds to it, another creates it where there is none
/// yet. Thread: main.
class CountedRow final
{
public:
    using Values = PreparedStatement::Values;

    CountedRow(const QString& updateSql, const QString& insertSql);

    /// Updates the row, and inserts it where the update found none. The database must be open.
    void add(Values updateValues, Values insertValues);

    /// Inserts the row, which leaves one that exists as it is, and then updates it.
    void createThenAdd(Values insertValues, Values updateValues);

private:
    PreparedStatement m_update;
    PreparedStatement m_insert;
};
