// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/ProtocolBandwidthStat.h"

#include "storage/Settings.h"
#include "storage/SettingsKeys.h"
#include "system/AbstractSystem.h"

namespace {

/// As the table names it.
QString nameOf(Utils::TrafficType type)
{
    switch (type) {
    case Utils::TrafficType::Tcp:
        return QStringLiteral("TCP");
    case Utils::TrafficType::Udp:
        return QStringLiteral("UDP");
    case Utils::TrafficType::Other:
        break;
    }
    return QStringLiteral("OTHER");
}

} // namespace

ProtocolBandwidthStat::ProtocolBandwidthStat(AbstractSystem* system, QObject* parent)
    : NetworkStat(system, parent)
    , m_hour(QStringLiteral(R"(UPDATE OR IGNORE network_protocol_bandwidth )"
                            R"(SET "download"="download"+?, "upload"="upload"+? )"
                            R"(WHERE "day"=date('now', 'localtime') AND "hour"=? )"
                            R"(AND "port_number"=? AND "protocol"=? AND "profile_id"=?)"),
             QStringLiteral(R"(INSERT OR IGNORE INTO network_protocol_bandwidth ("day", "hour", )"
                            R"("download", "upload", "port_number", "protocol", "profile_id") )"
                            R"(VALUES(date('now', 'localtime'), ?, ?, ?, ?, ?, ?))"))
{
}

void ProtocolBandwidthStat::discardGathered()
{
    system().getPortsBandwidthTCP();
    system().getPortsBandwidthUDP();
    system().getPortsBandwidthOther();
}

void ProtocolBandwidthStat::doUpdate(QDateTime now, bool)
{
    const int hour = now.time().hour();
    file(system().getPortsBandwidthTCP(), Utils::TrafficType::Tcp, hour);
    file(system().getPortsBandwidthUDP(), Utils::TrafficType::Udp, hour);
    file(system().getPortsBandwidthOther(), Utils::TrafficType::Other, hour);
}

void ProtocolBandwidthStat::file(const QHash<unsigned short, NetworkTraffic>& taken,
                                 Utils::TrafficType type, int hour)
{
    const bool recordsUnknown =
        Settings::instance().value(SettingsKeys::StatNetProtocolRecordUnknown);
    const QString protocol = nameOf(type);
    for (const auto& [port, traffic] : taken.asKeyValueRange()) {
        if (recordsUnknown || system().isKnownNetworkPort(port, type)) {
            const int number = port;
            m_hour.createThenAdd({hour, 0, 0, number, protocol, statsProfileId()},
                                 {static_cast<qint64>(traffic.download),
                                  static_cast<qint64>(traffic.upload), hour, number, protocol,
                                  statsProfileId()});
        }
    }
}
