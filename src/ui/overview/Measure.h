// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/Quantity.h"
#include "ui/history/HistoryTypes.h"

#include <array>

/// What is counted, one at a time.
enum class Measure
{
    Keys,
    Clicks,
    Scrolls,
    Travel,
    Uptime,
};

/// Names and values of the measures. Thread: any.
namespace Measures {

inline constexpr std::array<Measure, 5> All{Measure::Keys, Measure::Clicks, Measure::Scrolls,
                                            Measure::Travel, Measure::Uptime};

Quantity quantity(Measure measure, Format::Lengths lengths);

/// In the unit of its quantity: a count, seconds or inches.
double value(Measure measure, const Totals& totals);

} // namespace Measures
