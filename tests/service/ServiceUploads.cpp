// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceUploads.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

QString jsonText(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QString jsonText(const QJsonArray& array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

} // namespace

ServiceUploads::ServiceUploads(ServiceDatabase& database)
    : m_database(database)
{
}

void ServiceUploads::keepHeatmap(qint64 computerId, const HeatmapKind& kind,
                                 const QJsonObject& heatmap)
{
    ServiceDatabase::Transaction transaction(m_database);
    m_database.run(QStringLiteral("DELETE FROM heatmaps WHERE computer_id = ? AND kind = ? "
                                  "AND day BETWEEN ? AND ?"),
                   {computerId, kind.field, heatmap.value(QLatin1String("from")).toString(),
                    heatmap.value(QLatin1String("to")).toString()});
    for (const QJsonValue entry : heatmap.value(QLatin1String("rows")).toArray()) {
        const QJsonObject row = entry.toObject();
        m_database.run(QStringLiteral("INSERT INTO heatmaps VALUES (?, ?, ?, ?, ?, ?, ?) "
                                      "ON CONFLICT DO UPDATE SET count = count + excluded.count"),
                       {computerId, kind.field, row.value(QLatin1String("day")).toString(),
                        row.value(QLatin1String("hour")).toInteger(),
                        row.value(kind.subject).toVariant(),
                        row.value(QLatin1String("path")).toString(QLatin1String("")),
                        row.value(QLatin1String("count")).toInteger()});
    }
    transaction.commit();
}

qint64 ServiceUploads::applicationId(const QJsonObject& application)
{
    const QString path = application.value(QLatin1String("path")).toString();
    m_database.run(QStringLiteral("INSERT INTO applications (path, name, version) "
                                  "VALUES (?, ?, ?) ON CONFLICT (path) DO UPDATE "
                                  "SET name = excluded.name, version = excluded.version"),
                   {path, application.value(QLatin1String("name")).toString(),
                    application.value(QLatin1String("version")).toString()});
    return m_database.value(QStringLiteral("SELECT id FROM applications WHERE path = ?"), {path})
        .toLongLong();
}

void ServiceUploads::keepComputerInfo(qint64 computerId, const QJsonObject& info)
{
    m_database.run(QStringLiteral("UPDATE computers SET computer_info = ? WHERE id = ?"),
                   {jsonText(info), computerId});
}

bool ServiceUploads::hasComputerInfo(qint64 computerId)
{
    return m_database
        .value(QStringLiteral("SELECT computer_info IS NOT NULL FROM computers WHERE id = ?"),
               {computerId})
        .toBool();
}

void ServiceUploads::keepProfiles(qint64 computerId, const QJsonArray& profiles)
{
    m_database.run(QStringLiteral("UPDATE computers SET profiles = ? WHERE id = ?"),
                   {jsonText(profiles), computerId});
}

void ServiceUploads::keepClientSettings(qint64 computerId, const QJsonObject& settings)
{
    m_database.run(QStringLiteral("UPDATE computers SET client_settings = ?, settings_number = "
                                  "(SELECT MAX(settings_number) + 1 FROM computers) WHERE id = ?"),
                   {jsonText(settings), computerId});
}

QJsonObject ServiceUploads::clientSettings(qint64 accountId)
{
    const QString settings =
        m_database
            .value(QStringLiteral("SELECT client_settings FROM computers WHERE account_id = ? "
                                  "ORDER BY settings_number DESC"),
                   {accountId})
            .toString();
    return QJsonDocument::fromJson(settings.toUtf8()).object();
}

void ServiceUploads::keepFile(qint64 computerId, const QString& type, const QString& fileName,
                              const QByteArray& content)
{
    m_database.run(QStringLiteral("INSERT INTO uploads (computer_id, type, filename, content) "
                                  "VALUES (?, ?, ?, ?)"),
                   {computerId, type, fileName, content});
}

void ServiceUploads::keepReport(const QString& type, const QJsonObject& data)
{
    m_database.run(QStringLiteral("INSERT INTO reports (type, data) VALUES (?, ?)"),
                   {type, jsonText(data)});
}
