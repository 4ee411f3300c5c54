// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Ramp.h"

#include "ui/Theme.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {

constexpr double MarkContrast = 3;

/// A colour of the OKLCh space (B. Ottosson, "A perceptual color space for image processing",
/// 2020): equal steps of lightness look equal.
struct Oklch
{
    double lightness; ///< 0 to 1
    double chroma;
    double hue; ///< Degrees.
};

double gammaEncoded(double linear)
{
    const double value = std::clamp(linear, 0.0, 1.0);
    return value <= 0.0031308 ? 12.92 * value : 1.055 * std::pow(value, 1 / 2.4) - 0.055;
}

QColor toColor(const Oklch& colour)
{
    const double angle = colour.hue * std::numbers::pi / 180;
    const double a = colour.chroma * std::cos(angle);
    const double b = colour.chroma * std::sin(angle);
    const auto cubed = [](double value) { return value * value * value; };
    const double l = cubed(colour.lightness + 0.3963377774 * a + 0.2158037573 * b);
    const double m = cubed(colour.lightness - 0.1055613458 * a - 0.0638541728 * b);
    const double s = cubed(colour.lightness - 0.0894841775 * a - 1.2914855480 * b);
    const double red = 4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s;
    const double green = -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s;
    const double blue = -0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s;
    return QColor::fromRgbF(static_cast<float>(gammaEncoded(red)),
                            static_cast<float>(gammaEncoded(green)),
                            static_cast<float>(gammaEncoded(blue)));
}

} // namespace

QColor Ramp::quantity(double share, const QPalette& palette)
{
    constexpr Oklch lightFrom{0.94, 0.03, 220};
    constexpr Oklch lightTo{0.36, 0.13, 262};
    constexpr Oklch darkFrom{0.33, 0.06, 262};
    constexpr Oklch darkTo{0.92, 0.09, 200};
    const bool isDark = Theme::isDark(palette);
    const Oklch& from = isDark ? darkFrom : lightFrom;
    const Oklch& to = isDark ? darkTo : lightTo;
    const double at = std::clamp(share, 0.0, 1.0);
    return toColor({std::lerp(from.lightness, to.lightness, at),
                    std::lerp(from.chroma, to.chroma, at), std::lerp(from.hue, to.hue, at)});
}

QColor Ramp::textOn(const QColor& ground)
{
    const QColor dark(Qt::black);
    const QColor light(Qt::white);
    return Theme::contrast(dark, ground) >= Theme::contrast(light, ground) ? dark : light;
}

QColor Ramp::category(int index, const QPalette& palette)
{
    static constexpr std::array<QRgb, Categories> okabeIto{
        0xff0072b2, 0xffd55e00, 0xff009e73, 0xffcc79a7, 0xffe69f00, 0xff56b4e9, 0xfff0e442};
    QColor colour = QColor::fromRgb(okabeIto.at(static_cast<size_t>(index)));
    const QColor card = Theme::colours(palette).card;
    constexpr int step = 108; // Per cent.
    constexpr int mostSteps = 12;
    for (int i = 0; i < mostSteps && Theme::contrast(colour, card) < MarkContrast; ++i) {
        colour = Theme::isDark(palette) ? colour.lighter(step) : colour.darker(step);
    }
    return colour;
}

QColor Ramp::otherCategory(const QPalette& palette)
{
    return Theme::colours(palette).mutedText;
}
