// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceDatabase.h"

#include <QSqlError>
#include <QUuid>

#include <array>

namespace {

/// Counters are in the units of docs/account-protocol.md; `distance_inches` in whole inches.
constexpr std::array Schema{
    QLatin1String("PRAGMA journal_mode = WAL"),
    QLatin1String("PRAGMA synchronous = OFF"),
    QLatin1String("CREATE TABLE IF NOT EXISTS accounts (id INTEGER PRIMARY KEY AUTOINCREMENT, "
                  "username TEXT NOT NULL UNIQUE, email TEXT NOT NULL, activated INTEGER NOT NULL, "
                  "keys INTEGER NOT NULL DEFAULT 0, clicks INTEGER NOT NULL DEFAULT 0, "
                  "download INTEGER NOT NULL DEFAULT 0, upload INTEGER NOT NULL DEFAULT 0, "
                  "uptime INTEGER NOT NULL DEFAULT 0, scrolls INTEGER NOT NULL DEFAULT 0, "
                  "distance_inches INTEGER NOT NULL DEFAULT 0)"),
    QLatin1String("CREATE TABLE IF NOT EXISTS computers (id INTEGER PRIMARY KEY AUTOINCREMENT, "
                  "account_id INTEGER NOT NULL, name TEXT NOT NULL, password_hash TEXT NOT NULL, "
                  "zurge_token TEXT NOT NULL, last_zurge TEXT NOT NULL DEFAULT '', "
                  "archived INTEGER NOT NULL DEFAULT 0, "
                  "keys INTEGER NOT NULL DEFAULT 0, clicks INTEGER NOT NULL DEFAULT 0, "
                  "download INTEGER NOT NULL DEFAULT 0, upload INTEGER NOT NULL DEFAULT 0, "
                  "uptime INTEGER NOT NULL DEFAULT 0, scrolls INTEGER NOT NULL DEFAULT 0, "
                  "distance_inches INTEGER NOT NULL DEFAULT 0, "
                  "computer_info TEXT, profiles TEXT, client_settings TEXT, "
                  "settings_number INTEGER NOT NULL DEFAULT 0, UNIQUE (account_id, name))"),
    QLatin1String("CREATE TABLE IF NOT EXISTS client_tokens (token TEXT PRIMARY KEY, "
                  "computer_id INTEGER NOT NULL, begun_at INTEGER NOT NULL)"),
    QLatin1String("CREATE TABLE IF NOT EXISTS authorizations (client_uid TEXT PRIMARY KEY, "
                  "begun_at INTEGER NOT NULL, computer_id INTEGER)"),
    QLatin1String("CREATE TABLE IF NOT EXISTS zurges (id INTEGER PRIMARY KEY AUTOINCREMENT, "
                  "computer_id INTEGER NOT NULL, taken_at TEXT NOT NULL, mechanism TEXT NOT NULL, "
                  "keys INTEGER NOT NULL, clicks INTEGER NOT NULL, download INTEGER NOT NULL, "
                  "upload INTEGER NOT NULL, uptime INTEGER NOT NULL, scrolls INTEGER NOT NULL, "
                  "distance_inches INTEGER NOT NULL)"),
    QLatin1String(
        "CREATE TABLE IF NOT EXISTS zurge_applications (zurge_id INTEGER NOT NULL, "
        "application_id INTEGER NOT NULL, keys INTEGER NOT NULL, clicks INTEGER NOT NULL, "
        "download INTEGER NOT NULL, upload INTEGER NOT NULL, uptime INTEGER NOT NULL, "
        "scrolls INTEGER NOT NULL, distance_inches INTEGER NOT NULL, "
        "last_used TEXT NOT NULL)"),
    QLatin1String(
        "CREATE TABLE IF NOT EXISTS time_series (computer_id INTEGER NOT NULL, "
        "hour TEXT NOT NULL, keys INTEGER, clicks INTEGER, download INTEGER, upload INTEGER, "
        "uptime INTEGER, scrolls INTEGER, distance_inches REAL, "
        "PRIMARY KEY (computer_id, hour))"),
    QLatin1String("CREATE TABLE IF NOT EXISTS messages (id INTEGER PRIMARY KEY AUTOINCREMENT, "
                  "account_id INTEGER NOT NULL, created_at TEXT NOT NULL, "
                  "type TEXT NOT NULL, text TEXT NOT NULL, button_text TEXT NOT NULL, "
                  "link TEXT NOT NULL)"),
    QLatin1String("CREATE TABLE IF NOT EXISTS applications (id INTEGER PRIMARY KEY "
                  "AUTOINCREMENT, path TEXT NOT NULL UNIQUE, name TEXT NOT NULL, "
                  "version TEXT NOT NULL)"),
    QLatin1String("CREATE TABLE IF NOT EXISTS heatmaps (computer_id INTEGER NOT NULL, "
                  "kind TEXT NOT NULL, day TEXT NOT NULL, hour INTEGER NOT NULL, "
                  "subject TEXT NOT NULL, path TEXT NOT NULL, count INTEGER NOT NULL, "
                  "PRIMARY KEY (computer_id, kind, day, hour, subject, path))"),
    QLatin1String("CREATE TABLE IF NOT EXISTS uploads (id INTEGER PRIMARY KEY AUTOINCREMENT, "
                  "computer_id INTEGER NOT NULL, type TEXT NOT NULL, filename TEXT NOT NULL, "
                  "content BLOB NOT NULL)"),
    QLatin1String("CREATE TABLE IF NOT EXISTS reports (id INTEGER PRIMARY KEY AUTOINCREMENT, "
                  "type TEXT NOT NULL, data TEXT NOT NULL)"),
    QLatin1String("CREATE TABLE IF NOT EXISTS backups (id INTEGER PRIMARY KEY AUTOINCREMENT, "
                  "account_id INTEGER NOT NULL, filename TEXT NOT NULL, "
                  "created_at TEXT NOT NULL, content BLOB NOT NULL, "
                  "UNIQUE (account_id, filename))"),
    QLatin1String("CREATE TABLE IF NOT EXISTS tickets (ticket TEXT PRIMARY KEY, "
                  "account_id INTEGER NOT NULL, filename TEXT, begun_at INTEGER NOT NULL)"),
};

/// Empty texts and bytes are no NULL here, whatever way they came to be empty.
QVariant withoutNull(const QVariant& value)
{
    if (value.typeId() == QMetaType::QString) {
        return value.toString().isNull() ? QStringLiteral("") : value;
    }
    if (value.typeId() == QMetaType::QByteArray) {
        return value.toByteArray().isNull() ? QByteArrayLiteral("") : value;
    }
    return value;
}

} // namespace

ServiceDatabase::ServiceDatabase(const QString& path)
    : m_database(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"),
                                           QUuid::createUuid().toString(QUuid::WithoutBraces)))
{
    m_database.setDatabaseName(path);
    if (!m_database.open()) {
        qFatal("Cannot open %s: %s", qUtf8Printable(path),
               qUtf8Printable(m_database.lastError().text()));
    }
    for (const QLatin1String statement : Schema) {
        run(statement);
    }
}

ServiceDatabase::~ServiceDatabase()
{
    const QString name = m_database.connectionName();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

QSqlQuery ServiceDatabase::run(const QString& statement, const QVariantList& values)
{
    QSqlQuery query(m_database);
    query.setForwardOnly(true);
    const bool prepared = query.prepare(statement);
    for (const QVariant& value : values) {
        query.addBindValue(withoutNull(value));
    }
    if (!prepared || !query.exec()) {
        qFatal("%s: %s", qUtf8Printable(statement), qUtf8Printable(query.lastError().text()));
    }
    return query;
}

QVariant ServiceDatabase::value(const QString& statement, const QVariantList& values)
{
    QSqlQuery query = run(statement, values);
    return query.next() ? query.value(0) : QVariant();
}

ServiceDatabase::Transaction::Transaction(ServiceDatabase& database)
    : m_database(database)
{
    m_database.run(QStringLiteral("BEGIN IMMEDIATE"));
}

ServiceDatabase::Transaction::~Transaction()
{
    if (m_open) {
        m_database.run(QStringLiteral("ROLLBACK"));
    }
}

void ServiceDatabase::Transaction::commit()
{
    m_database.run(QStringLiteral("COMMIT"));
    m_open = false;
}
