// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/overview/Measure.h"

#include <QCoreApplication>

namespace {

/// Gives the context of the translations.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(Measure)
};

} // namespace

Quantity Measures::quantity(Measure measure, Format::Lengths lengths)
{
    using Kind = Quantity::Kind;
    switch (measure) {
    case Measure::Keys:
        return {.name = Text::tr("Keys")};
    case Measure::Clicks:
        return {.name = Text::tr("Clicks")};
    case Measure::Scrolls:
        return {.name = Text::tr("Scrolls")};
    case Measure::Travel:
        return {.name = Text::tr("Pointer travel"), .kind = Kind::Length, .lengths = lengths};
    case Measure::Uptime:
        break;
    }
    return {.name = Text::tr("Uptime"), .kind = Kind::Duration};
}

double Measures::value(Measure measure, const Totals& totals)
{
    constexpr double msPerSecond = 1000;
    switch (measure) {
    case Measure::Keys:
        return static_cast<double>(totals.keys);
    case Measure::Clicks:
        return static_cast<double>(totals.clicks);
    case Measure::Scrolls:
        return static_cast<double>(totals.scrolls);
    case Measure::Travel:
        return totals.inches;
    case Measure::Uptime:
        break;
    }
    return static_cast<double>(totals.uptimeMs) / msPerSecond;
}
