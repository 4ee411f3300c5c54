// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/mouse/DensityScale.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double PerClick = 10; ///< Lifts one lone click above nothing on the logarithmic scale.

} // namespace

DensityScale::DensityScale(Form form, double largest)
    : m_form(form)
    , m_largest(largest)
{
}

double DensityScale::share(double density) const
{
    if (m_largest <= 0) {
        return 0;
    }
    const double share = m_form == Form::Linear
                             ? density / m_largest
                             : std::log1p(PerClick * density) / std::log1p(PerClick * m_largest);
    return std::clamp(share, 0.0, 1.0);
}

QList<qint64> DensityScale::ticks() const
{
    const qint64 top = std::max<qint64>(1, std::llround(m_largest));
    QList<qint64> result{0};
    if (m_form == Form::Linear) {
        if (top >= 2) {
            result.append(top / 2);
        }
    } else {
        // A tick right below the top one would leave no room for its number.
        constexpr qint64 roomBelowTop = 3;
        for (qint64 decade = 1; decade * roomBelowTop <= top; decade *= 10) {
            result.append(decade);
        }
    }
    result.append(top);
    return result;
}
