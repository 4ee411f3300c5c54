// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/UsageStatsUpload.h"

#include "account/ClientCommunication.h"
#include "account/RequestTypes.h"
#include "base/Format.h"
#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "storage/Settings.h"

#include <QDateTime>

namespace {

bool isDue()
{
    const QDateTime last = Settings::instance().value(SettingsKeys::LastUsageStats);
    const QDateTime now = QDateTime::currentDateTime();
    return !last.isValid() || last > now || last.secsTo(now) >= UsageStatsUpload::SendEvery.count();
}

} // namespace

QStringList UsageStatsUpload::requestTypes() const
{
    return {RequestTypes::UsageStats};
}

void UsageStatsUpload::uploadUsageStats()
{
    if (!isAllowed() || isWaiting(RequestTypes::UsageStats) ||
        !Settings::instance().value(SettingsKeys::SendBugReportsAndUsageReports) || !isDue()) {
        return;
    }
    m_sentBefore = QDate::currentDate();
    const ClientCommunication::Map times = readWindowOpenTimes(m_sentBefore);
    const QVariantList events = readEvents();
    if (!times.isEmpty() || !events.isEmpty()) {
        send(RequestTypes::UsageStats,
             [&] { return communication().uploadUsageStats(times, events); });
    }
}

QVariantMap UsageStatsUpload::readWindowOpenTimes(const QDate& before) const
{
    DSqlQuery query(&database());
    query.prepare(QStringLiteral("SELECT day, identifier, value FROM usage_stats_time WHERE day < "
                                 "? ORDER BY day"));
    query.bindValue(0, Format::isoDay(before));
    query.exec();
    QMap<QString, QVariantMap> days;
    while (query.next()) {
        days[query.value(0).toString()].insert(query.value(1).toString(),
                                               query.value(2).toLongLong());
    }
    QVariantMap times;
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        times.insert(day.key(), day.value());
    }
    return times;
}

QVariantList UsageStatsUpload::readEvents()
{
    DSqlQuery query(&database());
    query.prepare(QStringLiteral("SELECT rowid, event_type, identifier, page_name, time_created, "
                                 "context FROM usage_stats_events ORDER BY rowid LIMIT ?"));
    query.bindValue(0, EventsAtOnce);
    query.exec();
    m_sentToEvent = 0;
    QVariantList events;
    while (query.next()) {
        m_sentToEvent = query.value(0).toLongLong();
        events.append(QVariantMap{
            {QStringLiteral("event_type"), query.value(1).toString()},
            {QStringLiteral("identifier"), query.value(2).toString()},
            {QStringLiteral("page_name"), query.value(3).toString()},
            {QStringLiteral("time_created"), query.value(4).toString()},
            {QStringLiteral("context"), query.value(5).toString()},
        });
    }
    return events;
}

void UsageStatsUpload::answered(const UploadAnswer& answer)
{
    if (!answer.isSuccess()) {
        Log::error("Error uploading usage statistics: {}", answer.message);
        return;
    }
    Settings::instance().setValue(SettingsKeys::LastUsageStats, QDateTime::currentDateTime());
    deleteSent();
}

void UsageStatsUpload::deleteSent() const
{
    DSqlQuery query(&database());
    query.prepare(QStringLiteral("DELETE FROM usage_stats_time WHERE day < ?"));
    query.bindValue(0, Format::isoDay(m_sentBefore));
    query.exec();
    query.prepare(QStringLiteral("DELETE FROM usage_stats_events WHERE rowid <= ?"));
    query.bindValue(0, m_sentToEvent);
    query.exec();
}
