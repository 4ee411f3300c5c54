// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/KnownInterfaces.h"

#include "ui/history/RowReader.h"

std::optional<QHash<QString, InterfaceFacts>> KnownInterfaces::read(const QSqlDatabase& connection)
{
    QHash<QString, InterfaceFacts> known;
    const bool isRead = RowReader::forEachRow(
        connection,
        QStringLiteral("SELECT \"mac_address\", \"description\", \"wifi\", \"ip_list\", "
                       "\"last_update\" FROM network_interfaces"),
        RowReader::bindNothing, [&known](const QSqlQuery& row) {
            const QString lastUpdate = row.value(4).toString() + QLatin1Char('Z');
            known.insert(
                row.value(0).toString(),
                {.description = row.value(1).toString(),
                 .isWifi = row.value(2).toBool(),
                 .addresses = row.value(3).toString(),
                 .lastSeen = QDateTime::fromString(lastUpdate, Qt::ISODate).toLocalTime()});
        });
    return isRead ? std::optional(known) : std::nullopt;
}
