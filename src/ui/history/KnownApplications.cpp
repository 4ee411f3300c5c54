// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/KnownApplications.h"

#include "storage/DSqlQuery.h"

namespace {

using Known = QHash<QString, KnownApplication>;

bool readNames(const QSqlDatabase& connection, Known& known)
{
    DSqlQuery query(connection);
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("SELECT \"path\", \"name\" FROM applications"))) {
        return false;
    }
    while (query.next()) {
        known[query.value(0).toString()].name = query.value(1).toString();
    }
    return true;
}

/// Rows from before `last_used` was kept know only when the application ran.
const QString& runningTimes()
{
    static const QString text = QStringLiteral(
        "SELECT \"path\", SUM(\"time\"), COALESCE(MAX(\"last_used\"), MAX(\"last_active\")) "
        "FROM application_uptime WHERE :profile IS NULL OR \"profile_id\"=:profile "
        "GROUP BY \"path\"");
    return text;
}

bool readRunningTimes(const QSqlDatabase& connection, std::optional<int> profileId, Known& known)
{
    DSqlQuery query(connection);
    query.setForwardOnly(true);
    if (!query.prepare(runningTimes())) {
        return false;
    }
    query.bindValue(QStringLiteral(":profile"), profileId ? QVariant(*profileId) : QVariant());
    if (!query.exec()) {
        return false;
    }
    while (query.next()) {
        KnownApplication& application = known[query.value(0).toString()];
        const QString lastUsed = query.value(2).toString() + QLatin1Char('Z');
        application.runningSeconds = query.value(1).toLongLong();
        application.lastUsed = QDateTime::fromString(lastUsed, Qt::ISODate).toLocalTime();
    }
    return true;
}

} // namespace

std::optional<QHash<QString, KnownApplication>>
KnownApplications::read(const QSqlDatabase& connection, std::optional<int> profileId)
{
    Known known;
    if (!readNames(connection, known) || !readRunningTimes(connection, profileId, known)) {
        return std::nullopt;
    }
    return known;
}
