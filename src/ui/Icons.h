// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

/// The program's own symbols: one family, drawn from resources in the colour that is asked for.
/// Thread: main.
namespace Icons {

/// The symbol `name` (a file of resources/icons without its suffix) in the palette's text colour at
/// the moment it is painted, so that it follows a change of theme by itself.
QIcon symbol(const QString& name);

/// The symbol in one colour for good, with its outline in another: for the tray, whose ground is
/// unknown. Drawn at the sizes that trays ask for.
QIcon outlined(const QString& name, const QColor& colour, const QColor& outline);

/// The icon with a mark in its lower right corner: a square on its tip in the mark's colour, cut
/// out of the icon and rimmed in `rim`. Drawn at the sizes that the icon has.
QIcon badged(const QIcon& icon, const QColor& mark, const QColor& rim);

} // namespace Icons
