// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Format.h"

#include <QString>

/// What a chart measures, and how its values read. Plain value. Any thread.
struct Quantity
{
    enum class Kind
    {
        Count,
        Duration, ///< In seconds.
        Length,   ///< In inches.
        Bytes,
        BytesPerSecond,
    };

    QString name; ///< As a heading, "Keys".
    Kind kind = Kind::Count;
    Format::Lengths lengths = Format::Lengths::Metric; ///< Of a length.

    /// A value as exact as there is room for: "12,403", "2 h 5 min", "3.05 km".
    QString text(double value) const;

    friend bool operator==(const Quantity&, const Quantity&) = default;
};

/// The unit of lengths in tables, whose columns have one unit each: metres or feet.
Format::LengthUnit tableUnit(Format::Lengths lengths);

/// The round steps of an axis from zero. Plain value.
struct AxisSteps
{
    double step = 1;    ///< Between two lines of the grid, in the quantity's own unit.
    int count = 1;      ///< Of steps; at least one.
    double perUnit = 1; ///< One unit of the labels, in the quantity's own unit.
    QString suffix;     ///< Of each label: "K" for thousands.
    QString unit;       ///< Of the labels: "h", "km"; empty for counts.

    double top() const { return step * count; }

    /// The number at the line `index`, 0 to `count`, without its unit.
    QString label(int index) const;
};

/// Steps that reach `largest` with `mostSteps` of them or fewer.
AxisSteps axisSteps(const Quantity& quantity, double largest, int mostSteps);
