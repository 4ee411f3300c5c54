// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>
#include <QDate>
#include <QList>
#include <QString>

#include <optional>

/// The days that the user selected: one of the usual ranges, which moves along with the days, or
/// two fixed days. Plain value.
class DateRange
{
    Q_DECLARE_TR_FUNCTIONS(DateRange)

public:
    enum class Preset
    {
        Today,
        Yesterday,
        Days7, ///< Today and the six days before; likewise the next two.
        Days30,
        Days90,
        ThisYear,
        AllTime,
    };

    DateRange(Preset preset = Preset::Today);

    /// From one day to another, both included, in either order.
    static DateRange between(const QDate& one, const QDate& other);

    /// The usual ranges, in the order in which they are offered.
    static QList<Preset> presets();

    /// None for two fixed days.
    std::optional<Preset> preset() const { return m_preset; }

    QDate first(const QDate& today) const; ///< Null for all time: the range has no first day.
    QDate last(const QDate& today) const;

    static QString name(Preset preset); ///< "Last 7 days".

    /// What the control shows: the preset's name, or the days.
    QString name() const;

    /// The days themselves: "Saturday, 21 November 2026", "15 – 21 November 2026".
    QString days(const QDate& today) const;

    friend bool operator==(const DateRange&, const DateRange&) = default;

private:
    static QString daysText(const QDate& first, const QDate& last);

    std::optional<Preset> m_preset;
    QDate m_first; ///< Of two fixed days.
    QDate m_last;
};
