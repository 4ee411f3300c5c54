// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Format.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr int SignificantDigits = 3;

const QLocale& english()
{
    static const QLocale locale(QLocale::English, QLocale::UnitedStates);
    return locale;
}

/// Three significant digits, without an exponent and without trailing zeros: 3.05, 12.4, 124.
QString threeDigits(double value)
{
    int decimals = SignificantDigits - 1;
    for (double bound = 10; value >= bound && decimals > 0; bound *= 10) {
        --decimals;
    }
    QString text = english().toString(value, 'f', decimals);
    if (decimals > 0) {
        while (text.endsWith(QLatin1Char('0'))) {
            text.chop(1);
        }
        if (text.endsWith(QLatin1Char('.'))) {
            text.chop(1);
        }
    }
    return text;
}

QString twoUnits(qint64 larger, const char* largerUnit, qint64 smaller, const char* smallerUnit)
{
    QString text = QStringLiteral("%1 %2").arg(Format::count(larger), QLatin1String(largerUnit));
    if (smaller > 0) {
        text += QStringLiteral(" %1 %2").arg(smaller).arg(QLatin1String(smallerUnit));
    }
    return text;
}

} // namespace

QString Format::count(qint64 number)
{
    return english().toString(number);
}

QString Format::shortCount(qint64 number)
{
    constexpr qint64 firstShortened = 10'000;
    if (number > -firstShortened && number < firstShortened) {
        return count(number);
    }

    struct Unit
    {
        double size;
        char letter;
    };

    constexpr std::array<Unit, 4> units{{{1e12, 'T'}, {1e9, 'B'}, {1e6, 'M'}, {1e3, 'K'}}};
    const double magnitude =
        number < 0 ? -static_cast<double>(number) : static_cast<double>(number);
    // A value that three digits would round up to the next unit belongs to that unit.
    constexpr double roundsUp = 0.9995;
    const auto unit = std::find_if(units.begin(), units.end(), [magnitude](const Unit& candidate) {
        return magnitude >= candidate.size * roundsUp;
    });
    return (number < 0 ? QStringLiteral("-") : QString()) + threeDigits(magnitude / unit->size) +
           QLatin1Char(unit->letter);
}

Format::ByteUnit Format::byteUnit(double number)
{
    constexpr std::array<const char*, 7> names{"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    constexpr double step = 1024;
    double size = 1;
    size_t unit = 0;
    while (number >= size * step && unit + 1 < names.size()) {
        size *= step;
        ++unit;
    }
    return {size, QLatin1String(names.at(unit))};
}

QString Format::bytes(quint64 number)
{
    const auto value = static_cast<double>(number);
    const ByteUnit unit = byteUnit(value);
    return threeDigits(value / unit.bytes) + QLatin1Char(' ') + unit.name;
}

Format::Lengths Format::lengths(const QString& system)
{
    return system == QLatin1String("imperial") ? Lengths::Imperial : Lengths::Metric;
}

Format::LengthUnit Format::lengthUnit(double inches, Lengths lengths)
{
    static constexpr std::array<LengthUnit, 3> metric{{{1e5 / 2.54, QLatin1String("km")},
                                                       {100 / 2.54, QLatin1String("m")},
                                                       {1 / 2.54, QLatin1String("cm")}}};
    static constexpr std::array<LengthUnit, 3> imperial{
        {{63'360, QLatin1String("mi")}, {12, QLatin1String("ft")}, {1, QLatin1String("in")}}};
    const std::array<LengthUnit, 3>& units = lengths == Lengths::Metric ? metric : imperial;
    return *std::find_if(units.begin(), units.end() - 1, [inches](const LengthUnit& candidate) {
        return std::abs(inches) >= candidate.inches;
    });
}

QString Format::length(double inches, Lengths lengths)
{
    const LengthUnit unit = lengthUnit(inches, lengths);
    return threeDigits(inches / unit.inches) + QLatin1Char(' ') + unit.name;
}

QString Format::duration(qint64 seconds)
{
    constexpr qint64 minute = 60;
    constexpr qint64 hourLength = 60 * minute;
    constexpr qint64 dayLength = 24 * hourLength;
    seconds = std::max<qint64>(seconds, 0);
    if (seconds < minute) {
        return QStringLiteral("%1 s").arg(seconds);
    }
    if (seconds < hourLength) {
        return QStringLiteral("%1 min").arg(seconds / minute);
    }
    if (seconds < dayLength) {
        return twoUnits(seconds / hourLength, "h", seconds % hourLength / minute, "min");
    }
    return twoUnits(seconds / dayLength, "d", seconds % dayLength / hourLength, "h");
}

QString Format::day(const QDate& date)
{
    return english().toString(date, QStringLiteral("d MMMM yyyy"));
}

QString Format::moment(const QDateTime& time)
{
    return english().toString(time, QStringLiteral("d MMMM yyyy, HH:mm"));
}

QString Format::hour(int hourOfDay)
{
    return QStringLiteral("%1:00").arg(hourOfDay, 2, 10, QLatin1Char('0'));
}

QString Format::isoDay(const QDate& date)
{
    return date.toString(QStringLiteral("yyyy-MM-dd"));
}

QString Format::isoDateTime(const QDateTime& time)
{
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}
