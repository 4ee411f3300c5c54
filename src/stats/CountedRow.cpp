// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/CountedRow.h"

CountedRow::CountedRow(const QString& updateSql, const QString& insertSql)
    : m_update(updateSql)
    , m_insert(insertSql)
{
}

void CountedRow::add(Values updateValues, Values insertValues)
{
    if (m_update.run(updateValues) && m_update.changedRows() == 0) {
        m_insert.run(insertValues);
    }
}

void CountedRow::createThenAdd(Values insertValues, Values updateValues)
{
    if (m_insert.run(insertValues)) {
        m_update.run(updateValues);
    }
}
