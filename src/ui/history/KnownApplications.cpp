// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/KnownApplications.h"

#include "ui/history/RowReader.h"

namespace {

using Known = QHash<QString, KnownApplication>;

bool readNames(const QSqlDatabase& connection, Known& known)
{
    return RowReader::forEachRow(connection,
                                 QStringLiteral("SELECT \"path\", \"name\" FROM applications"),
                                 RowReader::bindNothing, [&known](const QSqlQuery& row) {
                                     known[row.value(0).toString()].name = row.value(1).toString();
                                 });
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
    return RowReader::forEachRow(
        connection, runningTimes(),
        [profileId](QSqlQuery& query) { RowReader::bindProfile(query, profileId); },
        [&known](const QSqlQuery& row) {
            KnownApplication& application = known[row.value(0).toString()];
            const QString lastUsed = row.value(2).toString() + QLatin1Char('Z');
            application.runningSeconds = row.value(1).toLongLong();
            application.lastUsed = QDateTime::fromString(lastUsed, Qt::ISODate).toLocalTime();
        });
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
