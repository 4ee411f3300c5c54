// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/RollUpDays.h"

#include "storage/DSqlQuery.h"
#include "ui/history/RowReader.h"

#include <algorithm>

namespace {

/// An INSERT of a row with as many values as there are columns.
QString insertInto(const QString& table, qsizetype columns)
{
    return QStringLiteral("INSERT INTO %1 VALUES (%2?)")
        .arg(table, QStringLiteral("?, ").repeated(columns - 1));
}

bool readTable(const QSqlDatabase& history, CountTable table, const HistoryScope& day,
               QList<QVariantList>& rows)
{
    const CountTableText& text = CountTableTexts::of(table);
    const auto columns = static_cast<int>(1 + text.things.size() + text.values.size());
    return RowReader::forEachScopedRow(
        history, text.hourly, day, [&rows, columns](const QSqlQuery& row) {
            QVariantList values;
            values.reserve(columns);
            for (int i = 1; i <= columns; ++i) {
                values.append(row.value(i)); // The first column is the day.
            }
            rows.append(values);
        });
}

bool deleteBetween(const QSqlDatabase& connection, const QString& table, const QString& column,
                   qint64 first, qint64 last)
{
    DSqlQuery query(connection);
    if (!query.prepare(
            QStringLiteral("DELETE FROM %1 WHERE %2 BETWEEN ? AND ?").arg(table, column))) {
        return false;
    }
    query.bindValue(0, first);
    query.bindValue(1, last);
    return query.exec();
}

} // namespace

RollUpDays::RollUpDays(const QSqlDatabase& connection)
    : m_connection(connection)
{
}

std::optional<DayCounts> RollUpDays::read(const QSqlDatabase& history, qint64 day)
{
    const QDate date = QDate::fromJulianDay(day);
    const HistoryScope scope{.first = date, .last = date, .profileId = {}};
    DayCounts counts{.day = day, .hours = {}, .counts = {}};
    const bool isRead =
        HourRows::read(history, scope, counts.hours) &&
        std::ranges::all_of(CountTables, [&](CountTable table) {
            return readTable(history, table, scope, counts.counts.at(static_cast<size_t>(table)));
        });
    return isRead ? std::optional(counts) : std::nullopt;
}

bool RollUpDays::add(const DayCounts& counts)
{
    m_changedMonths.insert(RollUpMonths::monthOf(counts.day));
    return addHours(counts) && std::ranges::all_of(CountTables, [&](CountTable table) {
               return addCounts(table, counts);
           });
}

bool RollUpDays::addHours(const DayCounts& counts)
{
    constexpr int columns = 8;
    DSqlQuery insert(m_connection);
    if (!insert.prepare(insertInto(QStringLiteral("hours"), columns))) {
        return false;
    }
    return std::ranges::all_of(counts.hours, [&insert](const auto& entry) {
        const auto& [hour, totals] = entry;
        const QVariantList values{hour.julianDay, hour.hour,      hour.profileId, totals.keys,
                                  totals.clicks,  totals.scrolls, totals.inches,  totals.uptimeMs};
        for (int i = 0; i < columns; ++i) {
            insert.bindValue(i, values.at(i));
        }
        return insert.exec();
    });
}

bool RollUpDays::addCounts(CountTable table, const DayCounts& counts)
{
    const QList<QVariantList>& rows = counts.counts.at(static_cast<size_t>(table));
    if (rows.isEmpty()) {
        return true;
    }
    const qsizetype columns = 1 + rows.constFirst().size();
    DSqlQuery insert(m_connection);
    const QString name = CountTableTexts::of(table).name + QStringLiteral("_days");
    if (!insert.prepare(insertInto(name, columns))) {
        return false;
    }
    insert.bindValue(0, counts.day);
    return std::ranges::all_of(rows, [&insert](const QVariantList& row) {
        for (int i = 0; i < row.size(); ++i) {
            insert.bindValue(1 + i, row.at(i));
        }
        return insert.exec();
    });
}

bool RollUpDays::forget(const DayRange& days)
{
    for (int month = RollUpMonths::monthOf(days.first); month <= RollUpMonths::monthOf(days.last);
         ++month) {
        m_changedMonths.insert(month);
    }
    const QString day = QStringLiteral("day");
    return deleteBetween(m_connection, QStringLiteral("hours"), day, days.first, days.last) &&
           std::ranges::all_of(CountTables, [&](CountTable table) {
               const QString name = CountTableTexts::of(table).name + QStringLiteral("_days");
               return deleteBetween(m_connection, name, day, days.first, days.last);
           });
}

void RollUpDays::addChanged(int month)
{
    m_changedMonths.insert(month);
}

bool RollUpDays::sumMonths(const MonthRange& months)
{
    return std::ranges::all_of(m_changedMonths, [this, &months](int month) {
        return !months.contains(month) ||
               std::ranges::all_of(
                   CountTables, [this, month](CountTable table) { return sumMonth(table, month); });
    });
}

bool RollUpDays::sumMonth(CountTable table, int month)
{
    const CountTableText& text = CountTableTexts::of(table);
    const QString name = text.name + QStringLiteral("_months");
    QStringList sums;
    for (const QString& value : text.values) {
        sums += QStringLiteral("SUM(%1)").arg(CountTableTexts::names({value}));
    }
    DSqlQuery insert(m_connection);
    if (!deleteBetween(m_connection, name, QStringLiteral("month"), month, month) ||
        !insert.prepare(QStringLiteral("INSERT INTO %1 SELECT ?, profile, %2, %3 FROM %4_days "
                                       "WHERE day BETWEEN ? AND ? GROUP BY profile, %2")
                            .arg(name, CountTableTexts::names(text.things),
                                 sums.join(QStringLiteral(", ")), text.name))) {
        return false;
    }
    const DayRange days = RollUpMonths::daysOf(month);
    insert.bindValue(0, month);
    insert.bindValue(1, days.first);
    insert.bindValue(2, days.last);
    return insert.exec();
}
