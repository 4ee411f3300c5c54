// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/Statement.h"

Connection::Connection(const QString& fileName)
{
    sqlite3* database = nullptr;
    const int result = sqlite3_open(fileName.toUtf8().constData(), &database);
    m_database.reset(database);
    if (result != SQLITE_OK) {
        throw HistoryError(sqlite3_errmsg(database));
    }
}

void Connection::run(const char* sql)
{
    if (sqlite3_exec(m_database.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw HistoryError(sqlite3_errmsg(m_database.get()));
    }
}

Statement::Statement(const Connection& connection, const char* sql)
{
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v3(connection.handle(), sql, -1, SQLITE_PREPARE_PERSISTENT, &statement,
                           nullptr) != SQLITE_OK) {
        throw HistoryError(sqlite3_errmsg(connection.handle()));
    }
    m_statement.reset(statement);
}

void Statement::bind(int index, int value)
{
    sqlite3_bind_int(m_statement.get(), index, value);
}

void Statement::bind(int index, qint64 value)
{
    sqlite3_bind_int64(m_statement.get(), index, value);
}

void Statement::bind(int index, double value)
{
    sqlite3_bind_double(m_statement.get(), index, value);
}

void Statement::bind(int index, const char* value)
{
    sqlite3_bind_text(m_statement.get(), index, value, -1, SQLITE_STATIC);
}

void Statement::bind(int index, const QByteArray& value)
{
    sqlite3_bind_text(m_statement.get(), index, value.constData(), static_cast<int>(value.size()),
                      SQLITE_STATIC);
}

void Statement::bind(int index, const QString& value)
{
    const QByteArray utf8 = value.toUtf8();
    sqlite3_bind_text(m_statement.get(), index, utf8.constData(), static_cast<int>(utf8.size()),
                      SQLITE_TRANSIENT);
}

/// Values that are only borrowed live until here.
void Statement::step()
{
    sqlite3_step(m_statement.get());
    if (sqlite3_reset(m_statement.get()) != SQLITE_OK) {
        throw HistoryError(sqlite3_errmsg(sqlite3_db_handle(m_statement.get())));
    }
}
