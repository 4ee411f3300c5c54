// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/mouse/ClickImage.h"

#include "ui/Ramp.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr int PixelsPerCell = 4;
constexpr int Steps = 256; ///< Of the colours.

/// Where a pixel lies between the middles of two cells.
struct Between
{
    size_t low;
    size_t high;
    float share; ///< Of the second.
};

Between between(int pixel, int cells)
{
    constexpr float half = 0.5F;
    const float position = std::clamp((static_cast<float>(pixel) + half) / PixelsPerCell - half,
                                      0.0F, static_cast<float>(cells - 1));
    const auto low = static_cast<size_t>(position);
    return {low, std::min(low + 1, static_cast<size_t>(cells - 1)),
            position - static_cast<float>(low)};
}

std::array<QRgb, Steps> colours(const QPalette& palette)
{
    std::array<QRgb, Steps> result{};
    for (size_t i = 0; i < Steps; ++i) {
        const double share = static_cast<double>(i) / (Steps - 1);
        result.at(i) = qPremultiply(ClickImage::colour(share, palette).rgba());
    }
    return result;
}

} // namespace

QColor ClickImage::colour(double share, const QPalette& palette)
{
    constexpr double fullFrom = 0.2;
    QColor colour = Ramp::quantity(share, palette);
    colour.setAlphaF(static_cast<float>(std::min(1.0, share / fullFrom)));
    return colour;
}

QImage ClickImage::of(const ClickDensity::Screen& screen, const DensityScale& scale,
                      const QPalette& palette)
{
    const std::array<QRgb, Steps> table = colours(palette);
    const auto width = static_cast<size_t>(screen.size.width());
    QImage image(screen.size * PixelsPerCell, QImage::Format_ARGB32_Premultiplied);
    std::vector<Between> columns;
    columns.reserve(static_cast<size_t>(image.width()));
    for (int x = 0; x < image.width(); ++x) {
        columns.push_back(between(x, screen.size.width()));
    }
    for (int y = 0; y < image.height(); ++y) {
        const Between row = between(y, screen.size.height());
        const auto* upper = screen.density.data() + row.low * width;
        const auto* lower = screen.density.data() + row.high * width;
        auto* pixel = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (const Between& column : columns) {
            const float above = std::lerp(upper[column.low], upper[column.high], column.share);
            const float below = std::lerp(lower[column.low], lower[column.high], column.share);
            const auto density = static_cast<double>(std::lerp(above, below, row.share));
            *pixel++ = table[static_cast<size_t>(scale.share(density) * (Steps - 1))];
        }
    }
    return image;
}
