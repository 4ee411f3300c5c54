// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/NetworkRows.h"

NetworkRows::NetworkRows(const Connection& connection, Random& random)
    : m_random(random)
    // A card's row belongs to no profile: two of them may share it.
    , m_card(connection, "INSERT INTO network_interface_bandwidth VALUES (?, ?, ?, ?, ?) "
                         "ON CONFLICT DO UPDATE SET download = download + excluded.download, "
                         "upload = upload + excluded.upload")
    , m_application(connection, "INSERT INTO application_bandwidth VALUES (?, ?, ?, ?, ?, ?)")
    , m_country(connection, "INSERT INTO country_bandwidth VALUES (?, ?, ?, ?, ?, ?)")
    , m_port(connection, "INSERT INTO network_protocol_bandwidth VALUES (?, ?, ?, ?, ?, ?, ?)")
    , m_interface(connection, "INSERT INTO network_interfaces VALUES (?, ?, ?, ?, ?)")
{
}

NetworkTotals NetworkRows::write(const HourCounts& hour)
{
    const QByteArray day = hour.day.toString(Qt::ISODate).toLatin1();
    const Traffic traffic(m_random, hour);
    NetworkTotals totals;
    for (const auto& [card, download, upload] : traffic.cards) {
        m_card.run(day, hour.hour, download, upload, card->macAddress);
        totals.download += download;
        totals.upload += upload;
    }
    for (const ApplicationHour& application : hour.inFront) {
        if (application.download + application.upload > 0) {
            m_application.run(day, hour.hour, application.download, application.upload,
                              application.application->path, hour.profile);
        }
    }
    for (const auto& [country, download, upload] : traffic.countries) {
        m_country.run(day, hour.hour, download, upload, country, hour.profile);
    }
    for (const auto& [port, download, upload] : traffic.ports) {
        m_port.run(day, hour.hour, download, upload, port.number, port.protocol, hour.profile);
    }
    return totals;
}

void NetworkRows::finish(const QDateTime& end)
{
    const QString time = end.toUTC().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    for (const NetworkCard& card : NetworkCards) {
        m_interface.run(card.macAddress, card.description, card.wifi ? 1 : 0, card.addresses, time);
    }
}
