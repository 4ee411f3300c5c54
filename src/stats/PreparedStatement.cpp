// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/PreparedStatement.h"

#include "storage/Database.h"

PreparedStatement::PreparedStatement(const QString& sql)
    : m_sql(sql)
{
    prepare();
    QObject::connect(Database::instance(), &Database::aboutToClose, &m_context,
                     [this] { m_query.reset(); });
}

void PreparedStatement::prepare()
{
    m_query.emplace(Database::instance(), m_sql, false);
}

bool PreparedStatement::run(Values values)
{
    if (!m_query) {
        prepare();
    }
    int position = 0;
    for (const QVariant& value : values) {
        m_query->bindValue(position++, value);
    }
    return m_query->exec();
}

int PreparedStatement::changedRows() const
{
    return m_query ? m_query->numRowsAffected() : 0;
}

bool PreparedStatement::findsRow(Values values)
{
    const bool found = run(values) && m_query->next();
    m_query->finish(); // A query that is still being read would hold up the commit.
    return found;
}
