// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "service/ServiceStore.h"

#include <QByteArray>
#include <QJsonArray>
#include <QString>

#include <optional>

/// The backups that clients put at the service. An address to put one to, or to get one from, is a
/// ticket: good for an hour, and, to put, for one archive.
class ServiceArchives
{
public:
    static constexpr qint64 TicketSeconds = 3600;

    ServiceArchives(ServiceDatabase& database, const ServiceStore& store);

    QString ticketToPut(qint64 accountId);

    /// Nothing where the account has no such backup.
    std::optional<QString> ticketToGet(qint64 accountId, const QString& fileName);

    /// False where the ticket is not good, or the archive is empty.
    bool put(const QString& ticket, const QByteArray& archive);
    std::optional<QByteArray> get(const QString& ticket);

    QJsonArray list(qint64 accountId);

private:
    QString newTicket(qint64 accountId, const QVariant& fileName);
    QString newFileName(qint64 accountId);

    ServiceDatabase& m_database;
    const ServiceStore& m_store;
};
