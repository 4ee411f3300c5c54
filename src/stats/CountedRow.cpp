// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/CountedRow.h"

#include "storage/Database.h"

CountedRow::Statements::Statements(const QString& updateSql, const QString& insertSql)
    : update(Database::instance(), updateSql, false)
    , insert(Database::instance(), insertSql, false)
{
}

CountedRow::CountedRow(const QString& updateSql, const QString& insertSql)
    : m_updateSql(updateSql)
    , m_insertSql(insertSql)
{
    prepare();
    QObject::connect(Database::instance(), &Database::aboutToClose, &m_context,
                     [this] { m_statements.reset(); });
}

void CountedRow::prepare()
{
    m_statements.emplace(m_updateSql, m_insertSql);
}

void CountedRow::add(Values updateValues, Values insertValues)
{
    if (!m_statements) {
        prepare();
    }
    if (run(m_statements->update, updateValues) && m_statements->update.numRowsAffected() == 0) {
        run(m_statements->insert, insertValues);
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
