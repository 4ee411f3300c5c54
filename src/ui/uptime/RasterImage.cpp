// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/uptime/RasterImage.h"

#include "ui/Ramp.h"
#include "ui/Theme.h"

#include <array>
#include <cmath>

QColor RasterImage::colour(float share, int daysPerColumn, const QPalette& palette)
{
    if (daysPerColumn > 1) {
        return share > 0 ? Ramp::quantity(static_cast<double>(share), palette)
                         : QColor(Qt::transparent);
    }
    QColor colour = Theme::colours(palette).accent;
    colour.setAlphaF(share);
    return colour;
}

QImage RasterImage::of(const SessionRaster& raster, const QPalette& palette)
{
    constexpr int steps = 64;
    std::array<QRgb, steps + 1> table{};
    for (int i = 0; i <= steps; ++i) {
        const float share = static_cast<float>(i) / steps;
        table.at(static_cast<size_t>(i)) =
            qPremultiply(colour(share, raster.daysPerColumn(), palette).rgba());
    }
    QImage image(raster.columns(), SessionRaster::SlotCount, QImage::Format_ARGB32_Premultiplied);
    for (int slot = 0; slot < image.height(); ++slot) {
        auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(slot));
        for (int column = 0; column < image.width(); ++column) {
            const float share = raster.share(column, slot).value_or(0);
            pixels[column] = table[static_cast<size_t>(std::lround(share * steps))];
        }
    }
    return image;
}
