// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/SettingsUpload.h"

#include "account/ClientCommunication.h"
#include "account/RequestTypes.h"
#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "storage/Settings.h"

#include <QSqlRecord>

namespace {

bool haveChanged()
{
    const Settings& settings = Settings::instance();
    const QDateTime uploaded = settings.value(SettingsKeys::SettingsLastUploaded);
    const QDateTime saved = settings.value(SettingsKeys::SettingsLastSaved);
    return !uploaded.isValid() || (saved.isValid() && saved > uploaded);
}

} // namespace

bool SettingsUpload::staysHere(const QString& name)
{
    static const QSet<QString> names{
        SettingsKeys::ProxyUser.name(),         SettingsKeys::ProxyPassword.name(),
        SettingsKeys::ProxyEnabled.name(),      SettingsKeys::ProxyHostname.name(),
        SettingsKeys::ProxyPort.name(),         SettingsKeys::ProxyAuthEnabled.name(),
        SettingsKeys::ServiceApiUrl.name(),     SettingsKeys::ServiceWebsiteUrl.name(),
        SettingsKeys::ServiceReleaseUrl.name(), SettingsKeys::HistoryStamp.name(),
        SettingsKeys::PortableMode.name(),      SettingsKeys::OnlineLinkedComputers.name(),
    };
    return names.contains(name);
}

QStringList SettingsUpload::requestTypes() const
{
    return {RequestTypes::ClientSettings};
}

void SettingsUpload::uploadApplicationSettings(When when)
{
    if (!isAllowed() || isWaiting(RequestTypes::ClientSettings) ||
        (when == When::IfChanged && !haveChanged())) {
        return;
    }
    m_sentAt = QDateTime::currentDateTime();
    const ClientCommunication::Map clientSettings{
        {QStringLiteral("settings"), readSettings()},
        {QStringLiteral("geekwindow_labels"),
         readRows(QStringLiteral("SELECT id, val, x, y FROM geekwindow_labels"))},
        {QStringLiteral("milestones"),
         readRows(QStringLiteral(
             "SELECT id, name, time_created, time_updated, time_last_triggered, stats_type, "
             "stats_amount, milestone_active, last_stats_when_triggered, custom_message FROM "
             "milestones"))},
        {QStringLiteral("application_ignore"),
         readRows(QStringLiteral("SELECT path FROM application_ignore"))},
        {QStringLiteral("network_interfaces_ignore"),
         readRows(QStringLiteral("SELECT mac_address FROM network_interfaces_ignore"))},
    };
    send(RequestTypes::ClientSettings,
         [&] { return communication().uploadApplicationSettings(clientSettings); });
}

QVariantMap SettingsUpload::readSettings() const
{
    DSqlQuery query(&database(), QStringLiteral("SELECT name, value FROM settings"), true);
    QVariantMap settings;
    while (query.next()) {
        const QString name = query.value(0).toString();
        const QVariant value = query.value(1);
        // Bytes tell where windows are on this computer's screens.
        if (!staysHere(name) && value.typeId() != QMetaType::QByteArray) {
            settings.insert(name, value.toString());
        }
    }
    return settings;
}

QVariantList SettingsUpload::readRows(const QString& sql) const
{
    DSqlQuery query(&database(), sql, true);
    const QSqlRecord columns = query.record();
    QVariantList rows;
    while (query.next()) {
        QVariantMap row;
        for (int column = 0; column < columns.count(); ++column) {
            row.insert(columns.fieldName(column), query.value(column));
        }
        rows.append(row);
    }
    return rows;
}

void SettingsUpload::answered(const UploadAnswer& answer)
{
    if (answer.isSuccess()) {
        Log::info("Successfully uploaded the settings.");
        Settings::instance().setValue(SettingsKeys::SettingsLastUploaded, m_sentAt);
    } else {
        Log::error("Error uploading settings: {}", answer.message);
    }
}
