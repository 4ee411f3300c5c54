// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QString>

class QPainter;
class QRect;

/// Colours and text sizes. Everything derives from the application's palette, which is the
/// desktop's, or one of two of our own. Thread: main.
namespace Theme {

/// Sets the application's palette after the setting `theme`: "light" and "dark" force ours, "auto"
/// takes the desktop's, or our light one where the desktop has none. Windows follow at once.
void apply();

/// As `apply`, for a value of the setting.
void apply(const QString& theme);

QPalette lightPalette();
QPalette darkPalette();
bool isDark(const QPalette& palette);

/// What a card is drawn with, derived from `palette`.
struct Colours
{
    QColor page;     ///< Behind the cards.
    QColor card;     ///< A card's ground.
    QColor hairline; ///< Its border, and rules.
    QColor text;
    QColor mutedText; ///< Captions; at least 4.5 to 1 on the card and the page.
    QColor grid;      ///< Faint lines behind a chart's bars.
    QColor accent;    ///< Marks; at least 3 to 1 on the card.
    QColor track;     ///< The rest of a bar's full length.
};

Colours colours(const QPalette& palette);

/// The contrast of two colours, 1 to 21 (WCAG 2.1, relative luminance).
double contrast(const QColor& one, const QColor& other);

/// The palette of a field to type in, set off from the card it lies on.
QPalette fieldPalette(const QPalette& palette);

/// The palette of a label that is a caption.
QPalette mutedPalette(const QPalette& palette);

/// Draws the ground and the border of a card that fills `area`.
void drawCard(QPainter& painter, const QRect& area, const QPalette& palette);

enum class TextSize
{
    Caption, ///< 0.85 f
    Body,    ///< f, the desktop's font
    Title,   ///< 1.25 f
    Figure,  ///< 2 f
};

QFont font(TextSize size);

constexpr int Rhythm = 8; ///< Pixels; distances are multiples of it.
constexpr int Gap = 16;   ///< Between cards, and inside them.
constexpr int Corner = 8;

} // namespace Theme
