// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/RequestData.h"

#include "base/Version.h"
#include "storage/Settings.h"
#include "storage/SettingsKeys.h"

#include <QLocale>
#include <QSet>

namespace RequestData {

Map authorization(const QString& clientUid, const QString& organizationId)
{
    return {{QStringLiteral("client_uid"), clientUid},
            {QStringLiteral("organization_id"), organizationId}};
}

Map zurge(const ClientCommunication::ZurgeRequest& zurge)
{
    Map data{
        {QStringLiteral("token"), zurge.token},
        {QStringLiteral("keycount"), QString::number(zurge.keys)},
        {QStringLiteral("clickcount"), QString::number(zurge.clicks)},
        {QStringLiteral("uptime"), QString::number(zurge.uptimeSeconds)},
        {QStringLiteral("download"), QString::number(zurge.downloadMiB)},
        {QStringLiteral("upload"), QString::number(zurge.uploadMiB)},
        {QStringLiteral("scrolls"), QString::number(zurge.scrolls)},
        {QStringLiteral("distance_inches"), QString::number(zurge.distanceInches)},
        {QStringLiteral("zurge_mechanism"),
         zurge.automatic ? QStringLiteral("auto") : QStringLiteral("manual")},
    };
    if (!zurge.applications.isEmpty()) {
        data.insert(QStringLiteral("applications"), zurge.applications);
    }
    if (!zurge.timeSeries.isEmpty()) {
        data.insert(QStringLiteral("time_series"), zurge.timeSeries);
    }
    return data;
}

Map update(const AccountIdentity& identity, const QString& targetVersion)
{
    return {{QStringLiteral("computer_id"), identity.computerId},
            {QStringLiteral("user_id"), identity.userId},
            {QStringLiteral("current_version"), versionString()},
            {QStringLiteral("target_version"), targetVersion},
            {QStringLiteral("os"), QStringLiteral("linux")}};
}

Map usageStats(const AccountIdentity& identity, const Map& windowOpenTimes,
               const QVariantList& events)
{
    return {{QStringLiteral("window_open_times"), windowOpenTimes},
            {QStringLiteral("events"), events},
            {QStringLiteral("userid"), identity.userId},
            {QStringLiteral("computerid"), identity.computerId},
            {QStringLiteral("username"), identity.userName},
            {QStringLiteral("computer"), identity.computer},
            {QStringLiteral("os"), QStringLiteral("linux")},
            {QStringLiteral("client_version"), versionString()},
            {QStringLiteral("client_language"),
             Settings::instance().value(SettingsKeys::ClientLanguage)},
            {QStringLiteral("lang"), QLocale::system().name()}};
}

Map fileUpload(const QString& type)
{
    static const QSet<QString> types{QStringLiteral("keyboard_image"),
                                     QStringLiteral("mouse_image"),
                                     QStringLiteral("database_file")};
    return {
        {QStringLiteral("type_upload"), types.contains(type) ? type : QStringLiteral("unknown")}};
}

} // namespace RequestData
