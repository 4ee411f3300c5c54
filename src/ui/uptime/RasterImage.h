// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/uptime/SessionRaster.h"

#include <QImage>
#include <QPalette>

/// A raster as a picture, one pixel to a quarter of an hour, clear where the machine was off.
/// Thread: any.
namespace RasterImage {

QImage of(const SessionRaster& raster, const QPalette& palette);

/// The colour of a share of the time in columns of `daysPerColumn`.
QColor colour(float share, int daysPerColumn, const QPalette& palette);

} // namespace RasterImage
