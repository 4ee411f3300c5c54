// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Migrations.h"

#include "base/Log.h"
#include "storage/DSqlQuery.h"

#include <QRegularExpression>
#include <QSqlError>

#include <algorithm>

Migrations::Migrations(const QSqlDatabase& connection, const QString& scriptDirectory)
    : m_connection(connection)
    , m_scriptDirectory(scriptDirectory)
{
}

const QString& Migrations::failure() const
{
    return m_failure;
}

bool Migrations::run(int from, int to)
{
    for (int step = from + 1; step <= to; ++step) {
        Log::info("Executing db-upgrades/{}.sql", step);
        if (!runStep(step)) {
            return false;
        }
    }
    return runStatement(QStringLiteral("PRAGMA user_version=%1").arg(to));
}

bool Migrations::runStep(int step)
{
    const QString path = QStringLiteral("%1/%2.sql").arg(m_scriptDirectory).arg(step);
    const std::optional<QStringList> statements = DSqlQuery::readSqlFile(path);
    if (!statements) {
        m_failure = path;
        return false;
    }
    if (!m_connection.transaction()) {
        m_failure = m_connection.lastError().text();
        return false;
    }
    if (!runStatements(*statements)) {
        m_connection.rollback();
        return false;
    }
    if (!m_connection.commit()) {
        m_failure = m_connection.lastError().text();
        Log::error("Unable to complete db-upgrades/{}.sql: {}", step, m_failure);
        m_connection.rollback();
        return false;
    }
    return true;
}

bool Migrations::runStatements(const QStringList& statements)
{
    // The schema script has just created in their final form the tables this database lacked.
    return std::all_of(statements.cbegin(), statements.cend(), [this](const QString& statement) {
        return addsExistingColumn(statement) || runStatement(statement);
    });
}

bool Migrations::runStatement(const QString& statement)
{
    DSqlQuery query(m_connection);
    if (!query.exec(statement)) {
        m_failure = query.lastError().databaseText();
        return false;
    }
    return true;
}

bool Migrations::addsExistingColumn(const QString& statement) const
{
    static const QRegularExpression addition(
        QStringLiteral("\\bALTER TABLE (\\w+) ADD COLUMN (\\w+)"));
    const QRegularExpressionMatch match = addition.match(statement);
    if (!match.hasMatch()) {
        return false;
    }
    DSqlQuery query(m_connection);
    query.prepare(QStringLiteral("SELECT 1 FROM pragma_table_info(?) WHERE name = ?"));
    query.bindValue(0, match.captured(1));
    query.bindValue(1, match.captured(2));
    return query.exec() && query.next();
}
