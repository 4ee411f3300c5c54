// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/QuantityScale.h"

#include <QList>

/// From densities of clicks to shares of the scale that they are coloured by. Unlike counts, which
/// a `QuantityScale` places, densities begin right above nothing. Plain value; thread: any.
class DensityScale
{
public:
    using Form = QuantityScale::Form;

    DensityScale() = default;

    /// `largest` is the density that has the share 1.
    DensityScale(Form form, double largest);

    Form form() const { return m_form; }

    /// 0 to 1.
    double share(double density) const;

    /// The densities that the legend names, whole numbers, the smallest first.
    QList<qint64> ticks() const;

private:
    Form m_form = Form::Logarithmic;
    double m_largest = 0;
};
