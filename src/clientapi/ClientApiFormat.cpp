// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/ClientApiFormat.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <array>
#include <utility>

namespace {

/// 0 for what is no amount: what is negative, or no number at all.
double amount(double value)
{
    constexpr double largest = 18446744073709551616.0; // 2^64
    return value > 0 ? std::min(value, largest) : 0;
}

QString twoDigits(double value)
{
    return QString::number(value, 'f', 2).replace(QLatin1Char('.'), QLatin1Char(','));
}

QString inBinaryUnits(double bytes)
{
    constexpr std::array<const char*, 7> units{"B", "KB", "MB", "GB", "TB", "PB", "EB"};
    // From here on two digits would make it 1024,00 of the unit, which is 1,00 of the next.
    constexpr double firstOfNextUnit = 1023.995;
    constexpr double step = 1024;
    size_t unit = 0;
    while (bytes >= firstOfNextUnit && unit + 1 < units.size()) {
        bytes /= step;
        ++unit;
    }
    return twoDigits(bytes) + QLatin1String(units.at(unit));
}

const char* ordinalSuffix(quint64 rank)
{
    constexpr quint64 ten = 10;
    constexpr quint64 hundred = 100;
    if (rank % hundred / ten == 1) {
        return "th";
    }
    switch (rank % ten) {
    case 1:
        return "st";
    case 2:
        return "nd";
    case 3:
        return "rd";
    default:
        return "th";
    }
}

} // namespace

namespace ClientApiFormat {

QString count(quint64 value)
{
    static const QLocale english(QLocale::English, QLocale::UnitedStates);
    return english.toString(value);
}

QString bytes(quint64 value)
{
    return inBinaryUnits(static_cast<double>(value));
}

QString rate(double perSecond)
{
    return twoDigits(amount(perSecond));
}

QString byteRate(double bytesPerSecond)
{
    return inBinaryUnits(amount(bytesPerSecond)) + QStringLiteral("/s");
}

QString duration(quint64 seconds)
{
    constexpr quint64 minute = 60;
    constexpr quint64 hour = 60 * minute;
    constexpr quint64 day = 24 * hour;
    const std::array amounts{std::pair(seconds / day, 'd'), std::pair(seconds % day / hour, 'h'),
                             std::pair(seconds % hour / minute, 'm'),
                             std::pair(seconds % minute, 's')};
    QStringList parts;
    for (const auto& [amount, letter] : amounts) {
        if (amount > 0 || !parts.isEmpty() || letter == 's') {
            parts << QString::number(amount) + QLatin1Char(letter);
        }
    }
    return parts.join(QStringLiteral(", "));
}

QString miles(quint64 value)
{
    return count(value) + QLatin1Char('m');
}

QString inchesAsMiles(quint64 inches)
{
    constexpr quint64 inchesPerMile = 63'360;
    // From here on two digits would make it 100,00.
    constexpr double firstWhole = 99.995;
    const double fraction = static_cast<double>(inches) / static_cast<double>(inchesPerMile);
    if (fraction < firstWhole) {
        return twoDigits(fraction) + QLatin1Char('m');
    }
    const quint64 roundedUp = inches % inchesPerMile >= inchesPerMile / 2 ? 1 : 0;
    return miles(inches / inchesPerMile + roundedUp);
}

QString ordinal(quint64 rank)
{
    return count(rank) + QLatin1String(ordinalSuffix(rank));
}

} // namespace ClientApiFormat
