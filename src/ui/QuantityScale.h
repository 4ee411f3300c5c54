// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

/// Places counts between none and the largest, for `Ramp::quantity`. Plain value.
class QuantityScale
{
public:
    enum class Form
    {
        Linear,      ///< From 0; twice the count, twice the share.
        Logarithmic, ///< From the least; tenfold counts lie equally far apart.
    };

    QuantityScale() = default;
    /// `least`, 1 or more, is where a logarithmic scale begins; what is less lies there too.
    QuantityScale(qint64 largest, Form form, qint64 least = 1);

    Form form() const { return m_form; }

    qint64 largest() const { return m_largest; }

    /// The share of a count up to the largest: 0 to 1.
    double share(qint64 count) const;

    /// The count at a share, which is what a legend writes there.
    qint64 countAt(double share) const;

    friend bool operator==(const QuantityScale&, const QuantityScale&) = default;

private:
    qint64 m_largest = 0;
    Form m_form = Form::Linear;
    qint64 m_least = 1;
};
