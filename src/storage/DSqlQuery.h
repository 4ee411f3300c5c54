// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

class Database;

/// A query on the client's database that logs its failures, so that callers test the boolean result
/// and look no further. Thread: that of the connection it is bound to (main, for `Database`'s own).
class DSqlQuery : public QSqlQuery
{
public:
    explicit DSqlQuery(Database* database);

    /// Executes `query` at once, or prepares it.
    DSqlQuery(Database* database, const QString& query, bool execute);

    /// A query on a connection other than the main one.
    explicit DSqlQuery(const QSqlDatabase& connection);

    /// Binds this query to another connection; what was prepared on the old one is gone.
    void setDb(const QSqlDatabase& connection);

    bool prepare(const QString& query);
    bool exec();

    /// An empty text returns true without touching the database.
    bool exec(const QString& query);

    /// Runs the script at `path` (a resource works) in one transaction, statement by statement. One
    /// that fails is logged and the next one runs. Returns true if the script could be read and
    /// every statement succeeded.
    bool executeSqlFile(const QString& path);

    /// What the database said to the first statement that failed in the last script; else empty.
    const QString& scriptError() const;

    /// The statements of the script at `path`; a statement ends with a semicolon at the end of its
    /// line. Null (and logged) where it cannot be read.
    static std::optional<QStringList> readSqlFile(const QString& path);

    /// The slow-query log: off by default, and nothing in the program switches it on by itself.
    static void setTimeCheckEnabled(bool enabled);
    static void setTimeCheckThreshold(int milliseconds);

private:
    void initDb();
    void beginTimeCheck();
    void endTimeCheck(const QString& shortContext) const;
    void checkError(bool ok, const QString& context) const;

    static inline bool ms_checkTime = false;
    static inline int ms_checkTimeThreshold = 0; ///< Milliseconds.

    QSqlDatabase m_connection;
    QElapsedTimer m_started;
    QString m_scriptError;
};
