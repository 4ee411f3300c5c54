// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/QuantityScale.h"

#include <algorithm>
#include <cmath>

QuantityScale::QuantityScale(qint64 largest, Form form, qint64 least)
    : m_largest(std::max<qint64>(largest, 0))
    , m_form(form)
    , m_least(std::max<qint64>(least, 1))
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
    const auto least = static_cast<double>(m_least);
    return m_largest <= m_least
               ? 1
               : std::max(0.0, std::log(value / least) / std::log(largest / least));
}

qint64 QuantityScale::countAt(double share) const
{
    const auto largest = static_cast<double>(m_largest);
    const auto least = static_cast<double>(m_least);
    const double count =
        m_form == Form::Linear ? share * largest : least * std::pow(largest / least, share);
    return m_largest == 0 ? 0 : std::llround(count);
}
