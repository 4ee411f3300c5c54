// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QHash>
#include <QSqlDatabase>
#include <QString>

#include <optional>

/// What is known of a network interface besides its traffic. Plain value.
struct InterfaceFacts
{
    QString description;
    bool isWifi = false;
    QString addresses;  ///< As stored, joined by commas.
    QDateTime lastSeen; ///< Local; invalid where unknown.
};

/// Reads what is known of the network interfaces.
namespace KnownInterfaces {

/// By MAC address; nothing where the statement failed (which is in the log).
std::optional<QHash<QString, InterfaceFacts>> read(const QSqlDatabase& connection);

} // namespace KnownInterfaces
