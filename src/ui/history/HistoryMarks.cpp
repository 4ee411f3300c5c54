// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/HistoryMarks.h"

#include "storage/HistoryStamp.h"
#include "ui/history/RowReader.h"

namespace {

bool readOne(const QSqlDatabase& history, const QString& statement, QString& text)
{
    return RowReader::forEachRow(history, statement, RowReader::bindNothing,
                                 [&text](const QSqlQuery& row) { text = row.value(0).toString(); });
}

qint64 julianDay(const QString& text)
{
    const QDate day = QDate::fromString(text, Qt::ISODate);
    return day.isValid() ? day.toJulianDay() : 0;
}

} // namespace

std::optional<HistoryMarks> HistoryMarks::read(const QSqlDatabase& history)
{
    HistoryMarks marks;
    QString buttons;
    QString points;
    marks.stamp = HistoryStamp::read(history).value_or(QString());
    if (!readOne(history, QStringLiteral("SELECT MIN(\"day\") FROM mouseclicks_frequency"),
                 buttons) ||
        !readOne(history, QStringLiteral("SELECT MIN(\"day\") FROM mousepoints"), points)) {
        return std::nullopt;
    }
    marks.firstDays = {julianDay(buttons), julianDay(points)};
    return marks;
}

QList<DayRange> HistoryMarks::prunedSince(const HistoryMarks& newer, qint64 end) const
{
    QList<DayRange> pruned;
    for (size_t table = 0; table < firstDays.size(); ++table) {
        const qint64 before = firstDays.at(table);
        const qint64 now = newer.firstDays.at(table);
        const DayRange days{.first = before, .last = (now > 0 ? now : end) - 1};
        if (before > 0 && !days.isEmpty()) {
            pruned.append(days);
        }
    }
    return pruned;
}
