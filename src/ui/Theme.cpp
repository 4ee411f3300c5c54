// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Theme.h"

#include "storage/Settings.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>

#include <cmath>

namespace {

double linear(float channel)
{
    const auto value = static_cast<double>(channel);
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& colour)
{
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

/// `share` of `over` (0 to 1) laid on `ground`.
QColor blend(const QColor& ground, const QColor& over, double share)
{
    const auto mix = [share](int from, int to) {
        return static_cast<int>(std::lround(from + (to - from) * share));
    };
    return {mix(ground.red(), over.red()), mix(ground.green(), over.green()),
            mix(ground.blue(), over.blue())};
}

/// `colour`, drawn towards `strong` until it stands out from `ground` by `ratio`.
QColor standingOut(const QColor& colour, const QColor& strong, const QColor& ground, double ratio)
{
    constexpr double step = 0.1;
    QColor result = colour;
    for (double share = step; Theme::contrast(result, ground) < ratio && share <= 1.0;
         share += step) {
        result = blend(colour, strong, share);
    }
    return result;
}

struct Shades
{
    QRgb window, base, alternate, text, button, accent, accentText, link, mid, disabled;
};

QPalette makePalette(const Shades& shades)
{
    QPalette palette(QColor::fromRgb(shades.text), QColor::fromRgb(shades.button),
                     QColor::fromRgb(shades.button).lighter(120),
                     QColor::fromRgb(shades.mid).darker(130), QColor::fromRgb(shades.mid),
                     QColor::fromRgb(shades.text), Qt::white, QColor::fromRgb(shades.base),
                     QColor::fromRgb(shades.window));
    palette.setColor(QPalette::ButtonText, QColor::fromRgb(shades.text));
    palette.setColor(QPalette::AlternateBase, QColor::fromRgb(shades.alternate));
    palette.setColor(QPalette::Highlight, QColor::fromRgb(shades.accent));
    palette.setColor(QPalette::HighlightedText, QColor::fromRgb(shades.accentText));
    palette.setColor(QPalette::Link, QColor::fromRgb(shades.link));
    palette.setColor(QPalette::ToolTipBase, QColor::fromRgb(shades.base));
    palette.setColor(QPalette::ToolTipText, QColor::fromRgb(shades.text));
    palette.setColor(QPalette::PlaceholderText, QColor::fromRgb(shades.disabled));
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor::fromRgb(shades.disabled));
    }
    return palette;
}

} // namespace

void Theme::apply()
{
    apply(Settings::instance().value(SettingsKeys::Theme));
}

void Theme::apply(const QString& theme)
{
    if (theme == QLatin1String("dark")) {
        QApplication::setPalette(darkPalette());
        return;
    }
    if (theme == QLatin1String("light")) {
        QApplication::setPalette(lightPalette());
        return;
    }
    QApplication::setPalette(QPalette());
    const QPalette ofStyle = QApplication::style()->standardPalette();
    const bool desktopGivesNone =
        QApplication::palette().color(QPalette::Window) == ofStyle.color(QPalette::Window) &&
        QApplication::palette().color(QPalette::Highlight) == ofStyle.color(QPalette::Highlight);
    if (desktopGivesNone) {
        QApplication::setPalette(lightPalette());
    }
}

QPalette Theme::lightPalette()
{
    return makePalette({.window = 0xfff4f5f7,
                        .base = 0xffffffff,
                        .alternate = 0xfff7f8fa,
                        .text = 0xff1d2127,
                        .button = 0xfffafbfc,
                        .accent = 0xff1f6fb2,
                        .accentText = 0xffffffff,
                        .link = 0xff1a5f99,
                        .mid = 0xffb9bec6,
                        .disabled = 0xff6b727c});
}

QPalette Theme::darkPalette()
{
    return makePalette({.window = 0xff1b1e23,
                        .base = 0xff24282e,
                        .alternate = 0xff292e35,
                        .text = 0xffe6e9ed,
                        .button = 0xff2f343b,
                        .accent = 0xff58a6e0,
                        .accentText = 0xff10151a,
                        .link = 0xff7cbcec,
                        .mid = 0xff444a53,
                        .disabled = 0xff949ca7});
}

bool Theme::isDark(const QPalette& palette)
{
    return luminance(palette.color(QPalette::Window)) <
           luminance(palette.color(QPalette::WindowText));
}

Theme::Colours Theme::colours(const QPalette& palette)
{
    constexpr double forText = 4.5;
    constexpr double forMarks = 3.0;
    const QColor page = palette.color(QPalette::Window);
    const QColor card = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    const QColor muted = standingOut(blend(card, text, 0.62), text, card, forText);
    return {.page = page,
            .card = card,
            .hairline = blend(card, text, 0.14),
            .text = text,
            .mutedText = standingOut(muted, text, page, forText),
            .grid = blend(card, text, 0.09),
            .accent = standingOut(palette.color(QPalette::Highlight), text, card, forMarks),
            .track = blend(card, text, 0.07)};
}

QPalette Theme::fieldPalette(const QPalette& palette)
{
    QPalette field = palette;
    field.setColor(QPalette::Base, palette.color(QPalette::Window));
    return field;
}

QPalette Theme::mutedPalette(const QPalette& palette)
{
    QPalette muted = palette;
    muted.setColor(QPalette::WindowText, colours(palette).mutedText);
    return muted;
}

void Theme::drawCard(QPainter& painter, const QRect& area, const QPalette& palette)
{
    constexpr qreal halfPixel = 0.5;
    const Colours shades = colours(palette);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(shades.hairline, 1));
    painter.setBrush(shades.card);
    painter.drawRoundedRect(QRectF(area).adjusted(halfPixel, halfPixel, -halfPixel, -halfPixel),
                            Corner, Corner);
}

double Theme::contrast(const QColor& one, const QColor& other)
{
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QFont Theme::font(TextSize size)
{
    QFont font = QApplication::font();
    const auto scaled = [&font](double factor) {
        if (font.pointSizeF() > 0) {
            font.setPointSizeF(font.pointSizeF() * factor);
        } else {
            font.setPixelSize(static_cast<int>(std::lround(font.pixelSize() * factor)));
        }
    };
    switch (size) {
    case TextSize::Caption:
        scaled(0.85);
        break;
    case TextSize::Body:
        break;
    case TextSize::Title:
        scaled(1.25);
        font.setWeight(QFont::DemiBold);
        break;
    case TextSize::Figure:
        scaled(2.0);
        font.setWeight(QFont::DemiBold);
        break;
    }
    return font;
}
