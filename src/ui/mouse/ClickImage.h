// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/mouse/ClickDensity.h"
#include "ui/mouse/DensityScale.h"

#include <QImage>
#include <QPalette>

/// The density of clicks on one screen as a picture, clear where nobody clicked. Thread: any.
namespace ClickImage {

/// Of the screen's whole cells, four pixels to a cell and side.
QImage of(const ClickDensity::Screen& screen, const DensityScale& scale, const QPalette& palette);

/// The colour of a share of the scale.
QColor colour(double share, const QPalette& palette);

} // namespace ClickImage
