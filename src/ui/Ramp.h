// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPalette>

/// Colours for quantities and for categories. Thread: any.
namespace Ramp {

/// The colour of a share of the largest quantity, 0 to 1: perceptually even, from light to dark on
/// a light palette and from dark to light on a dark one. 0 is still told from the card's ground.
QColor quantity(double share, const QPalette& palette);

/// Black or white: what can be read on `ground`.
QColor textOn(const QColor& ground);

/// How many categories have a colour of their own; what is beyond is "other".
constexpr int Categories = 7;

/// The colour of a category, 0 to `Categories` - 1, of the Okabe-Ito set (Okabe and Ito, "Color
/// Universal Design", 2008), darkened or lightened where it would not stand out from the card.
QColor category(int index, const QPalette& palette);

/// The colour of all categories beyond.
QColor otherCategory(const QPalette& palette);

} // namespace Ramp
