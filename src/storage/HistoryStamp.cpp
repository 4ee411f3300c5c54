// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/HistoryStamp.h"

#include "storage/DSqlQuery.h"
#include "storage/SettingsKeys.h"

#include <QUuid>

bool HistoryStamp::renew(const QSqlDatabase& connection)
{
    DSqlQuery query(connection);
    query.prepare(QStringLiteral("REPLACE INTO settings (\"value\", \"name\") VALUES (?, ?)"));
    query.bindValue(0, QUuid::createUuid().toString(QUuid::WithoutBraces));
    query.bindValue(1, SettingsKeys::HistoryStamp.name());
    return query.exec();
}

bool HistoryStamp::renewFile(const QString& fileName)
{
    const QString name = QStringLiteral("history-stamp");
    bool renewed = false;
    {
        QSqlDatabase connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        connection.setDatabaseName(fileName);
        renewed = connection.open() && renew(connection);
    }
    QSqlDatabase::removeDatabase(name);
    return renewed;
}

std::optional<QString> HistoryStamp::read(const QSqlDatabase& connection)
{
    DSqlQuery query(connection);
    query.prepare(QStringLiteral("SELECT value FROM settings WHERE \"name\"=?"));
    query.bindValue(0, SettingsKeys::HistoryStamp.name());
    return query.exec() && query.next() ? std::optional(query.value(0).toString()) : std::nullopt;
}
