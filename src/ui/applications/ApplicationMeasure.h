// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistoryTypes.h"

#include <array>

/// What applications are compared by. Plain value.
enum class ApplicationMeasure
{
    FrontTime, ///< In seconds.
    Keys,
    Clicks,
    Scrolls,
    Travel, ///< In inches.
};

inline constexpr std::array AllApplicationMeasures{
    ApplicationMeasure::FrontTime, ApplicationMeasure::Keys, ApplicationMeasure::Clicks,
    ApplicationMeasure::Scrolls, ApplicationMeasure::Travel};

/// The measure's value, of an application over all days or over one.
template <typename Counts>
double valueOf(const Counts& counts, ApplicationMeasure measure)
{
    switch (measure) {
    case ApplicationMeasure::FrontTime:
        return static_cast<double>(counts.frontSeconds);
    case ApplicationMeasure::Keys:
        return static_cast<double>(counts.keys);
    case ApplicationMeasure::Clicks:
        return static_cast<double>(counts.clicks);
    case ApplicationMeasure::Scrolls:
        return static_cast<double>(counts.scrolls);
    case ApplicationMeasure::Travel:
        return counts.inches;
    }
    Q_UNREACHABLE();
}
