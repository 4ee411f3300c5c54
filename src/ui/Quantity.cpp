// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Quantity.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

constexpr QLatin1String PerSecond("/s");
constexpr double Minute = 60;
constexpr double Hour = 3600;

/// The least of 1, 2 and 5 times a power of ten that is at least as large.
double roundUp(double least)
{
    const double decade = std::pow(10.0, std::floor(std::log10(least)));
    constexpr double slack = 1e-9; // Of the logarithm.
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * decade >= least * (1 - slack)) {
            return factor * decade;
        }
    }
    return 10 * decade;
}

double roundUpDuration(double least)
{
    static constexpr std::array<double, 13> steps{
        1,           5,    15,       30,       Minute,   5 * Minute, 15 * Minute,
        30 * Minute, Hour, 2 * Hour, 4 * Hour, 6 * Hour, 12 * Hour};
    const auto* step = std::find_if(steps.begin(), steps.end(),
                                    [least](double candidate) { return candidate >= least; });
    return step != steps.end() ? *step : roundUp(least / Hour) * Hour;
}

/// Lets the labels of large counts be in thousands, millions or billions.
void shorten(AxisSteps& steps, double largest)
{
    static constexpr std::array<std::pair<double, char>, 3> units{
        {{1e9, 'B'}, {1e6, 'M'}, {1e4, 'K'}}};
    for (const auto& [from, letter] : units) {
        if (largest >= from) {
            steps.perUnit = letter == 'K' ? 1e3 : from;
            steps.suffix = QLatin1Char(letter);
            return;
        }
    }
}

} // namespace

QString Quantity::text(double value) const
{
    switch (kind) {
    case Kind::Duration:
        return Format::duration(std::llround(value));
    case Kind::Length:
        return Format::length(value, lengths);
    case Kind::Bytes:
        return Format::bytes(static_cast<quint64>(std::llround(value)));
    case Kind::BytesPerSecond:
        return Format::bytes(static_cast<quint64>(std::llround(value))) + PerSecond;
    case Kind::Count:
        break;
    }
    return Format::count(std::llround(value));
}

Format::LengthUnit tableUnit(Format::Lengths lengths)
{
    constexpr double inches = 100; // Some metres and some feet, yet no mile.
    return Format::lengthUnit(inches, lengths);
}

QString AxisSteps::label(int index) const
{
    if (index == 0) {
        return QStringLiteral("0");
    }
    const double inUnit = step / perUnit;
    const int decimals = inUnit < 1 ? static_cast<int>(std::ceil(-std::log10(inUnit) - 1e-9)) : 0;
    return QLocale(QLocale::English, QLocale::UnitedStates)
               .toString(inUnit * index, 'f', decimals) +
           suffix;
}

AxisSteps axisSteps(const Quantity& quantity, double largest, int mostSteps)
{
    AxisSteps steps;
    const double least = std::max(largest, 1e-9) / std::max(mostSteps, 1);
    switch (quantity.kind) {
    case Quantity::Kind::Count:
        steps.step = std::max(1.0, roundUp(least));
        shorten(steps, largest);
        break;
    case Quantity::Kind::Duration:
        steps.step = roundUpDuration(least);
        steps.perUnit = steps.step >= Hour ? Hour : steps.step >= Minute ? Minute : 1;
        steps.unit = steps.step >= Hour     ? QStringLiteral("h")
                     : steps.step >= Minute ? QStringLiteral("min")
                                            : QStringLiteral("s");
        break;
    case Quantity::Kind::Length: {
        const Format::LengthUnit unit = Format::lengthUnit(largest, quantity.lengths);
        steps.perUnit = unit.inches;
        steps.unit = unit.name;
        steps.step = largest > 0 ? roundUp(least / unit.inches) * unit.inches : unit.inches;
        break;
    }
    case Quantity::Kind::Bytes:
    case Quantity::Kind::BytesPerSecond: {
        const Format::ByteUnit unit = Format::byteUnit(largest);
        steps.perUnit = unit.bytes;
        steps.unit =
            unit.name + (quantity.kind == Quantity::Kind::Bytes ? QLatin1String() : PerSecond);
        steps.step = std::max(1.0, roundUp(least / unit.bytes) * unit.bytes);
        break;
    }
    }
    constexpr double slack = 1e-6; // A largest value on a line needs no line above it.
    steps.count = std::max(1, static_cast<int>(std::ceil(largest / steps.step - slack)));
    return steps;
}
