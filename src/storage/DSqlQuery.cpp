// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DSqlQuery.h"

#include "base/Log.h"
#include "storage/Database.h"

#include <QFile>
#include <QRegularExpression>
#include <QSqlError>

#include <sqlite3.h>

DSqlQuery::DSqlQuery(Database* database)
    : DSqlQuery(database->connection())
{
}

DSqlQuery::DSqlQuery(Database* database, const QString& query, bool execute)
    : DSqlQuery(database)
{
    if (execute) {
        exec(query);
    } else {
        prepare(query);
    }
}

DSqlQuery::DSqlQuery(const QSqlDatabase& connection)
    : QSqlQuery(connection)
    , m_connection(connection)
{
}

void DSqlQuery::setDb(const QSqlDatabase& connection)
{
    m_connection = connection;
    initDb();
}

void DSqlQuery::initDb()
{
    QSqlQuery::operator=(QSqlQuery(m_connection));
}

bool DSqlQuery::prepare(const QString& query)
{
    beginTimeCheck();
    const bool ok = QSqlQuery::prepare(query);
    if (!ok) {
        checkError(ok, QStringLiteral("prepare(") + query + QLatin1Char(')'));
    }
    endTimeCheck(QStringLiteral("prepare(...)"));
    return ok;
}

bool DSqlQuery::exec()
{
    beginTimeCheck();
    const bool ok = QSqlQuery::exec();
    checkError(ok, QStringLiteral("exec()"));
    endTimeCheck(QStringLiteral("exec()"));
    return ok;
}

bool DSqlQuery::exec(const QString& query)
{
    if (query.isEmpty()) {
        return true;
    }
    beginTimeCheck();
    const bool ok = QSqlQuery::exec(query);
    if (!ok) {
        checkError(ok, QStringLiteral("exec(") + query + QLatin1Char(')'));
    }
    endTimeCheck(QStringLiteral("exec(...)"));
    return ok;
}

bool DSqlQuery::executeSqlFile(const QString& path)
{
    m_scriptError.clear();
    const std::optional<QStringList> statements = readSqlFile(path);
    if (!statements) {
        m_scriptError = path;
        return false;
    }
    m_connection.transaction();
    for (const QString& statement : *statements) {
        if (!exec(statement) && m_scriptError.isEmpty()) {
            m_scriptError = lastError().databaseText();
        }
    }
    finish();
    if (!m_connection.commit()) {
        if (m_scriptError.isEmpty()) {
            m_scriptError = m_connection.lastError().databaseText();
        }
        m_connection.rollback();
    }
    return m_scriptError.isEmpty();
}

const QString& DSqlQuery::scriptError() const
{
    return m_scriptError;
}

std::optional<QStringList> DSqlQuery::readSqlFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        Log::error("Unable to read SQL script {}: {}", path, file.errorString());
        return std::nullopt;
    }
    static const QRegularExpression endOfStatement(QStringLiteral(";\\s*\\r?\\n"));
    QStringList statements =
        QString::fromUtf8(file.readAll()).split(endOfStatement, Qt::SkipEmptyParts);
    statements.removeIf([](const QString& statement) { return statement.trimmed().isEmpty(); });
    return statements;
}

void DSqlQuery::setTimeCheckEnabled(bool enabled)
{
    ms_checkTime = enabled;
}

void DSqlQuery::setTimeCheckThreshold(int milliseconds)
{
    ms_checkTimeThreshold = milliseconds;
}

void DSqlQuery::beginTimeCheck()
{
    m_started.start();
}

void DSqlQuery::endTimeCheck(const QString& shortContext) const
{
    if (!ms_checkTime) {
        return;
    }
    const qint64 elapsedMs = m_started.elapsed();
    if (elapsedMs >= ms_checkTimeThreshold) {
        Log::trace("Query {} took too much time!", shortContext);
        Log::trace("  Time: {}ms", elapsedMs);
        Log::trace("  Query string: {}", lastQuery());
    }
}

void DSqlQuery::checkError(bool ok, const QString& context) const
{
    if (ok || !Log::isEnabled(Log::Level::Error)) {
        return;
    }
    const QSqlError error = lastError();
    if (error.nativeErrorCode().toInt() == SQLITE_INTERRUPT) {
        return; // Someone wanted that.
    }
    Log::error("{} failed", context);
    Log::error("{}", lastQuery().isEmpty() ? QStringLiteral("  No last query?!") : lastQuery());
    if (!error.databaseText().isEmpty()) {
        Log::error("  Database error: {}", error.databaseText());
    }
    if (!error.driverText().isEmpty()) {
        Log::error("  Driver error: {}", error.driverText());
    }
    if (error.databaseText().isEmpty() && error.driverText().isEmpty()) {
        Log::error("  No error reported..");
    }
}
