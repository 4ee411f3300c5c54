// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/CountedRow.h"

CountedRow::CountedRow(Database* database, const QString& updateSql, const QString& insertSql)
    : m_update(database)
    , m_insert(database)
{
    m_update.prepare(updateSql);
    m_insert.prepare(insertSql);
}

void CountedRow::add(Values updateValues, Values insertValues)
{
    if (run(m_update, updateValues) && m_update.numRowsAffected() == 0) {
        run(m_insert, insertValues);
    }
}

bool CountedRow::run(DSqlQuery& statement, Values values)
{
    int position = 0;
    for (const QVariant& value : values) {
        statement.bindValue(position++, value);
    }
    return statement.exec();
}
