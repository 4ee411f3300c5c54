// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QLatin1String>
#include <QString>

/// Numbers, sizes, durations and dates as text: in English form whatever the system locale, so that
/// one figure reads the same in the window, the log and a bug report. Any thread.
namespace Format {

/// "12,403".
QString count(qint64 number);

/// A count shortened to three digits where it is long: "12.4K", "3.05M"; below 10,000 as `count`.
QString shortCount(qint64 number);

/// Bytes in binary units: "0 B", "1.5 KiB", "3.2 GiB".
QString bytes(quint64 number);

/// A unit of bytes. Plain value.
struct ByteUnit
{
    double bytes = 1; ///< One unit in bytes.
    QLatin1String name;
};

/// The unit that `bytes` gives `number` in.
ByteUnit byteUnit(double number);

/// Units of lengths, as the setting `mouse_distance_system` names them.
enum class Lengths
{
    Metric,
    Imperial,
};

/// `Imperial` for "imperial", else `Metric`.
Lengths lengths(const QString& system);

/// A unit of lengths. Plain value.
struct LengthUnit
{
    double inches = 1; ///< One unit in inches.
    QLatin1String name;
};

/// The unit that `length` gives `inches` in.
LengthUnit lengthUnit(double inches, Lengths lengths);

/// A length in inches in the largest unit that leaves a whole number before the point: "12 cm",
/// "3.05 m", "12.4 km", or "12 in", "3.05 ft", "12.4 mi".
QString length(double inches, Lengths lengths);

/// "45 s", "3 min", "2 h 5 min", "3 d 4 h". Negative values count as 0.
QString duration(qint64 seconds);

/// "21 November 2026".
QString day(const QDate& date);

/// "21 November 2026, 14:03"; empty for an invalid time.
QString moment(const QDateTime& time);

/// "14:00", from an hour 0 to 23.
QString hour(int hourOfDay);

/// The text in which days are stored: "yyyy-MM-dd".
QString isoDay(const QDate& date);

/// The text in which times are stored, as SQLite's own `datetime()` gives it: "yyyy-MM-dd
/// HH:mm:ss".
QString isoDateTime(const QDateTime& time);

} // namespace Format
