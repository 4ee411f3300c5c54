// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ZurgeApplications.h"

#include "account/ZurgeAmounts.h"
#include "storage/DSqlQuery.h"

namespace {

/// When the application was in front last, as local time; empty where that is not known. The table
/// holds UTC.
QString lastUsed(DSqlQuery& query, const QString& path)
{
    query.bindValue(0, path);
    const bool found = query.exec() && query.next();
    QString time = found ? query.value(0).toString() : QString();
    query.finish();
    return time;
}

QVariantMap entry(qint64 onlineId, const UnzurgedCounts& amounts, const QString& lastUsed)
{
    QVariantMap entry{{QStringLiteral("id"), onlineId}, {QStringLiteral("lastused"), lastUsed}};
    for (const UnzurgedCounter& counter : UnzurgedCounters) {
        const quint64 count = amounts.*counter.value / counter.perServiceUnit;
        entry.insert(counter.name, static_cast<qint64>(count));
    }
    return entry;
}

} // namespace

ZurgeApplications ZurgeApplications::from(Database& database,
                                          const QHash<QString, UnzurgedCounts>& unzurged)
{
    ZurgeApplications applications;
    DSqlQuery known(
        &database,
        QStringLiteral("SELECT path, online_app_id FROM applications WHERE online_app_id > 0"),
        true);
    DSqlQuery used(&database,
                   QStringLiteral("SELECT datetime(COALESCE(MAX(last_used), MAX(last_active)), "
                                  "'localtime') FROM application_uptime WHERE path = ?"),
                   false);
    while (known.next()) {
        const QString path = known.value(0).toString();
        const UnzurgedCounts amounts = ZurgeAmounts::wholeUnits(unzurged.value(path));
        if (amounts != UnzurgedCounts{}) {
            applications.amounts.insert(path, amounts);
            applications.list << entry(known.value(1).toLongLong(), amounts, lastUsed(used, path));
        }
    }
    return applications;
}
