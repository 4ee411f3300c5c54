// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/BootRows.h"

#include "base/Format.h"
#include "storage/DSqlQuery.h"

#include <algorithm>

namespace {

/// UTC is at most this far from local time.
constexpr int ZoneDays = 1;

/// The moment at which local clocks showed what `utc` shows in UTC.
QDateTime asLocal(const QDateTime& utc)
{
    // A time that clocks jumped over in spring is the moment it would have been without the jump.
    const QDateTime local(utc.date(), utc.time(), Qt::LocalTime);
    return QDateTime::fromMSecsSinceEpoch(local.toMSecsSinceEpoch());
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
        QDateTime time = QDateTime::fromString(text.left(19) + QLatin1Char('Z'), Qt::ISODate);
        return time;
    };
    const QDateTime startText = read(start);
    const QDateTime endText = read(end);
    if (!startText.isValid() || !endText.isValid()) {
        return std::nullopt;
    }
    const QDateTime begin = asLocal(startText);
    const qint64 afterStart = begin.secsTo(asLocal(endText));
    const bool isFirstEnd = afterStart >= 0 && afterStart <= FirstEndSeconds;
    const QDateTime finish = isFirstEnd ? asLocal(endText) : endText.toLocalTime();
    return BootSession{.start = begin, .end = std::max(begin, finish)};
}

std::optional<QList<BootSession>> BootRows::read(const QSqlDatabase& connection,
                                                 const HistoryScope& scope)
{
    DSqlQuery query(connection);
    query.setForwardOnly(true);
    if (!query.prepare(
            QStringLiteral("SELECT \"boot_time\", \"end_time\" FROM uptimes WHERE "
                           "\"boot_time\"<:after AND (\"end_time\">=:from OR \"boot_time\">=:from) "
                           "ORDER BY \"boot_time\""))) {
        return std::nullopt;
    }
    const QDate from = scope.first.isNull() ? QDate(1, 1, 1) : scope.first.addDays(-ZoneDays);
    query.bindValue(QStringLiteral(":from"), Format::isoDay(from));
    query.bindValue(QStringLiteral(":after"), Format::isoDay(scope.last.addDays(1)));
    if (!query.exec()) {
        return std::nullopt;
    }
    QList<BootSession> sessions;
    while (query.next()) {
        const auto found = session(query.value(0).toString(), query.value(1).toString());
        if (found && touches(*found, scope)) {
            sessions.append(*found);
        }
    }
    return sessions;
}
