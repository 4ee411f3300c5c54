// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceArchives.h"

#include <QUuid>

ServiceArchives::ServiceArchives(ServiceDatabase& database, const ServiceStore& store)
    : m_database(database)
    , m_store(store)
{
}

QString ServiceArchives::ticketToPut(qint64 accountId)
{
    return newTicket(accountId, QVariant());
}

std::optional<QString> ServiceArchives::ticketToGet(qint64 accountId, const QString& fileName)
{
    const QVariant found =
        m_database.value(QStringLiteral("SELECT filename FROM backups WHERE account_id = ? "
                                        "AND filename = ?"),
                         {accountId, fileName});
    return found.isValid() ? std::make_optional(newTicket(accountId, found)) : std::nullopt;
}

QString ServiceArchives::newTicket(qint64 accountId, const QVariant& fileName)
{
    QString ticket = QUuid::createUuid().toString(QUuid::WithoutBraces);
    m_database.run(QStringLiteral("INSERT INTO tickets VALUES (?, ?, ?, ?)"),
                   {ticket, accountId, fileName, m_store.nowSeconds()});
    return ticket;
}

bool ServiceArchives::put(const QString& ticket, const QByteArray& archive)
{
    const qint64 accountId =
        m_database
            .value(QStringLiteral("SELECT account_id FROM tickets WHERE ticket = ? "
                                  "AND filename IS NULL AND begun_at >= ?"),
                   {ticket, m_store.nowSeconds() - TicketSeconds})
            .toLongLong();
    if (accountId == 0 || archive.isEmpty()) {
        return false;
    }
    ServiceDatabase::Transaction transaction(m_database);
    m_database.run(QStringLiteral("DELETE FROM tickets WHERE ticket = ?"), {ticket});
    m_database.run(QStringLiteral("INSERT INTO backups (account_id, filename, created_at, "
                                  "content) VALUES (?, ?, ?, ?)"),
                   {accountId, newFileName(accountId), m_store.now(), archive});
    transaction.commit();
    return true;
}

QString ServiceArchives::newFileName(qint64 accountId)
{
    const int number = m_database
                           .value(QStringLiteral("SELECT COUNT(*) + 1 FROM backups "
                                                 "WHERE account_id = ?"),
                                  {accountId})
                           .toInt();
    return QStringLiteral("tallyvane-%1.db.zip").arg(number);
}

std::optional<QByteArray> ServiceArchives::get(const QString& ticket)
{
    const QVariant content =
        m_database.value(QStringLiteral("SELECT content FROM backups "
                                        "JOIN tickets USING (account_id, filename) "
                                        "WHERE ticket = ? AND begun_at >= ?"),
                         {ticket, m_store.nowSeconds() - TicketSeconds});
    return content.isValid() ? std::make_optional(content.toByteArray()) : std::nullopt;
}

QJsonArray ServiceArchives::list(qint64 accountId)
{
    QSqlQuery query =
        m_database.run(QStringLiteral("SELECT filename, created_at, length(content) FROM backups "
                                      "WHERE account_id = ? ORDER BY id DESC"),
                       {accountId});
    QJsonArray backups;
    while (query.next()) {
        backups.append(QJsonObject{{QStringLiteral("filename"), query.value(0).toString()},
                                   {QStringLiteral("created_at"), query.value(1).toString()},
                                   {QStringLiteral("size"), query.value(2).toLongLong()}});
    }
    return backups;
}
