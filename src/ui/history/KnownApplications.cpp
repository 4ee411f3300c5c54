// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/KnownApplications.h"

#include "ui/history/RowReader.h"

namespace {

using Known = QHash<QString, ApplicationFacts>;

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
            ApplicationFacts& application = known[row.value(0).toString()];
            const QString lastUsed = row.value(2).toString() + QLatin1Char('Z');
            application.runningSeconds = row.value(1).toLongLong();
            application.lastUsed = QDateTime::fromString(lastUsed, Qt::ISODate).toLocalTime();
        });
}

} // namespace

std::optional<QHash<QString, ApplicationFacts>>
KnownApplications::read(const QSqlDatabase& connection, std::optional<int> profileId)
{
    const std::optional<QHash<QString, QString>> named = names(connection);
    Known known;
    if (!named || !readRunningTimes(connection, profileId, known)) {
        return std::nullopt;
    }
    for (auto it = named->cbegin(); it != named->cend(); ++it) {
        known[it.key()].name = it.value();
    }
    return known;
}

std::optional<QHash<QString, QString>> KnownApplications::names(const QSqlDatabase& connection)
{
    QHash<QString, QString> names;
    const bool isRead = RowReader::forEachRow(
        connection, QStringLiteral("SELECT \"path\", \"name\" FROM applications"),
        RowReader::bindNothing, [&names](const QSqlQuery& row) {
            names.insert(row.value(0).toString(), row.value(1).toString());
        });
    return isRead ? std::optional(names) : std::nullopt;
}
