// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/QuantityScale.h"

#include <algorithm>
#include <cmath>

QuantityScale::QuantityScale(qint64 largest, Form form)
    : m_largest(std::max<qint64>(largest, 0))
    , m_form(form)
{
}

double QuantityScale::share(qint64 count) const
{
    if (count <= 0 || m_largest == 0) {
        return 0;
    }
    const auto value = static_cast<double>(std::min(count, m_largest));
    const auto largest = static_cast<double>(m_largest);
    if (m_form == Form::Linear) {
        return value / largest;
    }
    return m_largest == 1 ? 1 : std::log(value) / std::log(largest);
}

qint64 QuantityScale::countAt(double share) const
{
    const auto largest = static_cast<double>(m_largest);
    const double count = m_form == Form::Linear ? share * largest : std::pow(largest, share);
    return m_largest == 0 ? 0 : std::llround(count);
}
