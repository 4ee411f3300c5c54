// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/ReadingConnection.h"

#include "base/Log.h"
#include "storage/Database.h"
#include "storage/DatabaseConnection.h"

#include <QSqlError>
#include <QUrl>

#include <atomic>

namespace {

QString nextName()
{
    constexpr int hexadecimal = 16;
    static std::atomic<quintptr> next = 1;
    return Database::ConnectionName + QStringLiteral("-0x") + QString::number(next++, hexadecimal);
}

/// See https://sqlite.org/uri.html.
QString lockless(const QString& fileName)
{
    return QString::fromLatin1(QUrl::fromLocalFile(fileName).toEncoded()) +
           QStringLiteral("?mode=ro&immutable=1");
}

} // namespace

ReadingConnection::ReadingConnection(const QString& fileName, Locking locking)
    : m_connection(DatabaseConnection::named(nextName()))
{
    const QString options = DatabaseConnection::options(DatabaseFiles::Access::ReadOnly);
    if (locking == Locking::None) {
        m_connection.setDatabaseName(lockless(fileName));
        m_connection.setConnectOptions(options + QStringLiteral(";QSQLITE_OPEN_URI"));
    } else {
        m_connection.setDatabaseName(fileName);
        m_connection.setConnectOptions(options);
    }
    if (!m_connection.open()) {
        Log::error("Unable to open database: {}", m_connection.lastError().text());
    }
}

ReadingConnection::~ReadingConnection()
{
    const QString name = m_connection.connectionName();
    m_connection = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

bool ReadingConnection::isOpen() const
{
    return m_connection.isOpen();
}

const QSqlDatabase& ReadingConnection::database() const
{
    return m_connection;
}
