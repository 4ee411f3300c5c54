// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/InterfaceBandwidthStat.h"

#include "account/LocalStats.h"
#include "base/Log.h"
#include "system/AbstractSystem.h"

namespace {

/// More than an interface moves in one take: a counter that jumped.
constexpr quint64 MostBytes = 1'000'000'000;

} // namespace

InterfaceBandwidthStat::InterfaceBandwidthStat(AbstractSystem* system, QObject* parent)
    : NetworkStat(system, parent)
    , m_replaceInterface(
          QStringLiteral(R"(REPLACE INTO network_interfaces ("mac_address", "description", )"
                         R"("wifi", "ip_list", "last_update") )"
                         R"(VALUES(?, ?, ?, ?, datetime('now'));)"))
    , m_hour(QStringLiteral(R"(UPDATE OR IGNORE network_interface_bandwidth )"
                            R"(SET "download"="download"+?, "upload"="upload"+? )"
                            R"(WHERE "day"=date('now', 'localtime') AND "hour"=? )"
                            R"(AND "mac_address"=?)"),
             QStringLiteral(R"(INSERT OR IGNORE INTO network_interface_bandwidth ("day", "hour", )"
                            R"("download", "upload", "mac_address") )"
                            R"(VALUES(date('now', 'localtime'), ?, 0, 0, ?))"))
    , m_insertSecond(
          QStringLiteral(R"(INSERT OR IGNORE INTO network_interface_bandwidth_second ("time", )"
                         R"("download", "upload", "mac_address") )"
                         R"(VALUES(datetime('now'), ?, ?, ?);)"))
    , m_trimSeconds(QStringLiteral(R"(DELETE FROM network_interface_bandwidth_second )"
                                   R"(WHERE "time" < datetime('now', '-61 minutes'))"))
{
}

int InterfaceBandwidthStat::getUpdateMilliSecondMod() const
{
    return 1'000;
}

int InterfaceBandwidthStat::getFrequentUpdateMilliSecond() const
{
    return 1'000;
}

void InterfaceBandwidthStat::discardGathered()
{
    system().getInterfacesBandwidth();
    system().getInterfacesCounters();
}

void InterfaceBandwidthStat::doUpdate(QDateTime now, bool)
{
    const int hour = now.time().hour();
    NetworkTraffic taken = fileAll(system().getInterfacesBandwidth(), hour);
    taken += fileAll(system().getInterfacesCounters(), hour); // Where no packet was captured.
    Q_EMIT trafficTaken(taken.download, taken.upload);
}

void InterfaceBandwidthStat::doInfrequentUpdate(QDateTime, bool)
{
    m_trimSeconds.run({});
}

/// Returns the sum of what was filed.
NetworkTraffic InterfaceBandwidthStat::fileAll(const QList<InterfaceBandwidth>& taken, int hour)
{
    NetworkTraffic sum;
    for (const InterfaceBandwidth& bandwidth : taken) {
        if (isCounted(bandwidth)) {
            file(bandwidth, hour);
            sum += bandwidth.total;
        }
    }
    return sum;
}

bool InterfaceBandwidthStat::isCounted(const InterfaceBandwidth& bandwidth) const
{
    const auto& [interface, total, internet] = bandwidth;
    if (interface.mac_address.isEmpty()) {
        return false;
    }
    if (total.download > MostBytes || total.upload > MostBytes) {
        Log::debug("Dropped {} bytes downloaded and {} uploaded through {}, too many for one take",
                   total.download, total.upload, interface.name);
        return false;
    }
    const bool isIdle = (total.download | total.upload | internet.download | internet.upload) == 0;
    return !isIdle && !system().shouldExcludeNICForStats(interface.mac_address);
}

void InterfaceBandwidthStat::file(const InterfaceBandwidth& bandwidth, int hour)
{
    const auto& [interface, total, internet] = bandwidth;
    const QString& macAddress = interface.mac_address;
    const auto download = static_cast<qint64>(total.download);
    const auto upload = static_cast<qint64>(total.upload);
    // A text that is null becomes the column's default, the empty one.
    m_replaceInterface.run({macAddress, interface.description, interface.wifi,
                            interface.ip_list.join(QStringLiteral(", "))});
    m_hour.createThenAdd({hour, macAddress}, {download, upload, hour, macAddress});
    m_insertSecond.run({download, upload, macAddress});
    LocalStats::instance()->increaseBandwidth(internet.download, internet.upload);
}
