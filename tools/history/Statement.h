// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <sqlite3.h>

#include <memory>
#include <stdexcept>

/// Why no history could be written, in words for the user.
class HistoryError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// An SQLite connection of its own: for millions of rows, the way through Qt's variants costs more
/// than the database. Throws `HistoryError`.
class Connection
{
public:
    explicit Connection(const QString& fileName);

    void run(const char* sql);

    sqlite3* handle() const { return m_database.get(); }

private:
    struct Close
    {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };

    std::unique_ptr<sqlite3, Close> m_database;
};

/// A prepared statement without result. Throws `HistoryError`.
class Statement
{
public:
    Statement(const Connection& connection, const char* sql);

    template <typename... Values>
    void run(const Values&... values)
    {
        int index = 0;
        (bind(++index, values), ...);
        step();
    }

private:
    struct Finalize
    {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    void bind(int index, int value);
    void bind(int index, qint64 value);
    void bind(int index, double value);
    void bind(int index, const char* value);
    void bind(int index, const QByteArray& value);
    void bind(int index, const QString& value);
    void step();

    std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
};
