// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/ApplicationBandwidthStat.h"

#include "account/LocalStats.h"
#include "system/AbstractSystem.h"

ApplicationBandwidthStat::ApplicationBandwidthStat(AbstractSystem* system, QObject* parent)
    : NetworkStat(system, parent)
    , m_hour(QStringLiteral(R"(UPDATE OR IGNORE application_bandwidth )"
                            R"(SET "download"="download"+?, "upload"="upload"+? )"
                            R"(WHERE "day"=date('now', 'localtime') AND "hour"=? )"
                            R"(AND "path"=? AND "profile_id"=?)"),
             QStringLiteral(R"(INSERT OR IGNORE INTO application_bandwidth ("day", "hour", )"
                            R"("download", "upload", "path", "profile_id") )"
                            R"(VALUES(date('now', 'localtime'), ?, ?, ?, ?, ?))"))
    , m_insertSecond(
          QStringLiteral(R"(INSERT OR IGNORE INTO application_bandwidth_second ("time", )"
                         R"("download", "upload", "path", "profile_id") )"
                         R"(VALUES(datetime('now'), ?, ?, ?, ?);)"))
    , m_trimSeconds(QStringLiteral(R"(DELETE FROM application_bandwidth_second )"
                                   R"(WHERE "time" < datetime('now', '-61 minutes'))"))
{
}

void ApplicationBandwidthStat::onDisabled()
{
    NetworkStat::onDisabled();
    // The last update has just looked for its owners.
    m_unowned.dropAll();
    m_unowned.reportDropped();
}

void ApplicationBandwidthStat::discardGathered()
{
    system().getPortsBandwidth();
}

void ApplicationBandwidthStat::doUpdate(QDateTime now, bool)
{
    const int hour = now.time().hour();
    const ApplicationTraffic attributed = takeAttributed(now);
    for (const auto& [application, traffic] : attributed.asKeyValueRange()) {
        if (!system().shouldExcludeApplicationForStats(application.first)) {
            file(application, traffic, hour);
        }
    }
}

void ApplicationBandwidthStat::doInfrequentUpdate(QDateTime, bool)
{
    m_trimSeconds.run({});
}

/// What was captured since the last update, and before it, and belongs to a known application.
ApplicationTraffic ApplicationBandwidthStat::takeAttributed(const QDateTime& now)
{
    const QHash<unsigned short, NetworkTraffic> captured = system().getPortsBandwidth();
    m_unowned.dropOld(now);
    QSet<unsigned short> wanted = m_unowned.ports();
    for (auto port = captured.keyBegin(); port != captured.keyEnd(); ++port) {
        wanted.insert(*port);
    }
    ApplicationTraffic attributed;
    if (!wanted.isEmpty()) {
        const QHash<unsigned short, QString> owners = system().getApplicationPorts(wanted);
        attributed = m_unowned.takeOwned(owners);
        for (const auto& [port, traffic] : captured.asKeyValueRange()) {
            const QString path = owners.value(port);
            if (path.isEmpty()) {
                m_unowned.add(port, statsProfileId(), traffic, now);
            } else {
                attributed[{path, statsProfileId()}] += traffic;
            }
        }
    }
    m_unowned.reportDropped();
    return attributed;
}

void ApplicationBandwidthStat::file(const ApplicationInProfile& application,
                                    const NetworkTraffic& traffic, int hour)
{
    const auto& [path, profileId] = application;
    const auto download = static_cast<qint64>(traffic.download);
    const auto upload = static_cast<qint64>(traffic.upload);
    m_hour.createThenAdd({hour, 0, 0, path, profileId}, {download, upload, hour, path, profileId});
    m_insertSecond.run({download, upload, path, profileId});
    LocalStats::instance()->increaseAppBandwidth(path, traffic.download, traffic.upload);
}
