// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/CountryBandwidthStat.h"

#include "base/InstalledFiles.h"
#include "base/Log.h"
#include "storage/Database.h"
#include "system/AbstractSystem.h"

#include <QFileInfo>
#include <QHash>

CountryBandwidthStat::CountryBandwidthStat(AbstractSystem* system, QObject* parent)
    : NetworkStat(system, parent)
    , m_hour(QStringLiteral(R"(UPDATE OR IGNORE country_bandwidth )"
                            R"(SET "download"="download"+?, "upload"="upload"+? )"
                            R"(WHERE "day"=date('now', 'localtime') AND "hour"=? )"
                            R"(AND "country"=? AND "profile_id"=?)"),
             QStringLiteral(R"(INSERT OR IGNORE INTO country_bandwidth ("day", "hour", )"
                            R"("download", "upload", "country", "profile_id") )"
                            R"(VALUES(date('now', 'localtime'), ?, ?, ?, ?, ?))"))
{
}

void CountryBandwidthStat::onEnabled()
{
    reloadGeoDB();
    NetworkStat::onEnabled();
}

void CountryBandwidthStat::discardGathered()
{
    system().getIpBandwidth();
}

void CountryBandwidthStat::reloadGeoDB()
{
    const QFileInfo database(Database::instance()->getDatabaseFileName());
    for (const QString& path : {database.path() + QStringLiteral("/GeoIP.dat"),
                                installedFile(QStringLiteral("country.mmdb"))}) {
        if (QFileInfo::exists(path) && openGeoDB(path)) {
            return;
        }
    }
    Log::info("No country database is open, so traffic per country is not filed");
}

bool CountryBandwidthStat::openGeoDB(const QString& path)
{
    Log::info("Opening GeoIP database: {}", path);
    const QString problem = m_countries.open(path);
    if (!problem.isEmpty()) {
        Log::warn("Unable to open GeoIP database! Error: {}", problem);
    }
    return problem.isEmpty();
}

void CountryBandwidthStat::doUpdate(QDateTime now, bool)
{
    const QHash<IpAddress, NetworkTraffic> taken = system().getIpBandwidth();
    if (!m_countries.isOpen()) {
        return;
    }
    QHash<QString, NetworkTraffic> countries;
    for (const auto& [address, traffic] : taken.asKeyValueRange()) {
        countries[m_countries.countryCode(address)] += traffic;
    }
    const int hour = now.time().hour();
    for (const auto& [code, traffic] : countries.asKeyValueRange()) {
        Log::debug("Country {} downloaded {} and uploaded {}", code, traffic.download,
                   traffic.upload);
        m_hour.createThenAdd({hour, 0, 0, code, statsProfileId()},
                             {static_cast<qint64>(traffic.download),
                              static_cast<qint64>(traffic.upload), hour, code, statsProfileId()});
    }
}
