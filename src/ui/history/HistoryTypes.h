// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

/// What `History` answers with. Plain values.

/// What was counted over some time.
struct Totals
{
    qint64 keys = 0;
    qint64 clicks = 0;
    qint64 scrolls = 0; ///< Steps, all directions.
    double inches = 0;  ///< Pointer travel.
    qint64 uptimeMs = 0;

    Totals& operator+=(const Totals& other);

    bool isEmpty() const { return *this == Totals{}; }

    friend bool operator==(const Totals&, const Totals&) = default;
};

struct DayTotals
{
    QDate day;
    Totals totals;
    friend bool operator==(const DayTotals&, const DayTotals&) = default;
};

struct HourTotals
{
    int hour = 0; ///< Local, 0 to 23.
    Totals totals;
    friend bool operator==(const HourTotals&, const HourTotals&) = default;
};

struct WeekHourTotals
{
    int weekday = 1; ///< As Qt::DayOfWeek, 1 is Monday.
    int hour = 0;    ///< Local, 0 to 23.
    Totals totals;
    friend bool operator==(const WeekHourTotals&, const WeekHourTotals&) = default;
};

struct KeyCount
{
    int key = 0; ///< A stored key; see `KeyNames`.
    qint64 count = 0;
    friend bool operator==(const KeyCount&, const KeyCount&) = default;
};

struct CombinationCount
{
    QString combination; ///< As stored: modifiers and a stored key, "control,shift,67".
    qint64 count = 0;
    friend bool operator==(const CombinationCount&, const CombinationCount&) = default;
};

struct ButtonCount
{
    int button = 0; ///< 0 left, 1 right, 2 middle, 99 any other.
    qint64 count = 0;
    friend bool operator==(const ButtonCount&, const ButtonCount&) = default;
};

struct ScrollCount
{
    int direction = 1; ///< See `Utils::ScrollDirection`.
    qint64 count = 0;
    friend bool operator==(const ScrollCount&, const ScrollCount&) = default;
};

/// Clicks in one cell of a grid laid over the screens. The primary screen covers the cells 0 to
/// `Columns` - 1 and 0 to `Rows` - 1; cells of screens beside it are negative or beyond.
struct ClickCell
{
    static constexpr int Columns = 96;
    static constexpr int Rows = 54;

    int column = 0;
    int row = 0;
    qint64 count = 0;
    friend bool operator==(const ClickCell&, const ClickCell&) = default;
};

struct ApplicationTotals
{
    QString path;
    QString name; ///< From the table of known applications; empty where it is not in there.
    qint64 keys = 0;
    qint64 clicks = 0;
    qint64 scrolls = 0;
    double inches = 0;
    qint64 frontSeconds = 0;   ///< In front.
    qint64 runningSeconds = 0; ///< Since counting began, whatever the days asked for.
    QDateTime lastUsed;        ///< Local; invalid where unknown.
    friend bool operator==(const ApplicationTotals&, const ApplicationTotals&) = default;
};

/// One application on one day.
struct ApplicationDay
{
    QDate day;
    QString path;
    qint64 keys = 0;
    qint64 clicks = 0;
    qint64 scrolls = 0;
    double inches = 0;
    qint64 frontSeconds = 0;
    friend bool operator==(const ApplicationDay&, const ApplicationDay&) = default;
};

/// One boot of the machine. Times are local.
struct BootSession
{
    QDateTime start;
    QDateTime end; ///< Not before `start`.
    friend bool operator==(const BootSession&, const BootSession&) = default;
};
