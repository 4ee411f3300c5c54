// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/BootRows.h"

#include "ui/history/RowReader.h"

#include <algorithm>

namespace {

/// UTC is at most this far from local time.
constexpr int ZoneDays = 1;

/// The moment at which local clocks showed what `utc` shows in UTC.
QDateTime asLocal(const QDateTime& utc)
{
    const QDateTime local(utc.date(), utc.time(), Qt::LocalTime);
    // A time that clocks jumped over in spring is the moment it would have been without the jump.
    return local.isValid() ? local : QDateTime::fromMSecsSinceEpoch(local.toMSecsSinceEpoch());
}

bool touches(const BootSession& session, const HistoryScope& scope)
{
    return session.start.date() <= scope.last &&
           (scope.first.isNull() || session.end.date() >= scope.first);
}

} // namespace

std::optional<BootSession> BootRows::session(const QString& start, const QString& end)
{
    const auto read = [](const QString& text) {
        return QDateTime::fromString(text + QLatin1Char('Z'), Qt::ISODate);
    };
    const QDateTime startText = read(start);
    const QDateTime endText = read(end);
    if (!startText.isValid() || !endText.isValid()) {
        return std::nullopt;
    }
    const qint64 afterStart = startText.secsTo(endText);
    const bool isFirstEnd = afterStart >= 0 && afterStart <= FirstEndSeconds;
    const QDateTime begin = asLocal(startText);
    const QDateTime finish = isFirstEnd ? asLocal(endText) : endText.toLocalTime();
    return BootSession{.start = begin, .end = std::max(begin, finish)};
}

std::optional<QList<BootSession>> BootRows::read(const QSqlDatabase& connection,
                                                 const HistoryScope& scope)
{
    const QDate from = scope.first.isNull() ? QDate(1, 1, 1) : scope.first.addDays(-ZoneDays);
    // Conversions of time take longer than reading, which holds up whoever writes.
    QList<std::pair<QString, QString>> rows;
    const bool isRead = RowReader::forEachRow(
        connection,
        QStringLiteral("SELECT \"boot_time\", \"end_time\" FROM uptimes WHERE "
                       "\"boot_time\"<:after AND (\"end_time\">=:from OR \"boot_time\">=:from) "
                       "ORDER BY \"boot_time\""),
        [&scope, &from](QSqlQuery& query) {
            query.bindValue(QStringLiteral(":from"), Format::isoDay(from));
            query.bindValue(QStringLiteral(":after"), Format::isoDay(scope.last.addDays(1)));
        },
        [&rows](const QSqlQuery& row) {
            rows.append({row.value(0).toString(), row.value(1).toString()});
        });
    QList<BootSession> sessions;
    for (const auto& [start, end] : std::as_const(rows)) {
        const std::optional<BootSession> found = session(start, end);
        if (found && touches(*found, scope)) {
            sessions.append(*found);
        }
    }
    return isRead ? std::optional(sessions) : std::nullopt;
}
