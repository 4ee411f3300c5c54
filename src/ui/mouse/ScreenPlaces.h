// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistoryTypes.h"

#include <QList>
#include <QRectF>
#include <QString>

/// Where screens lie, in sizes of the primary screen, whose own place is (0, 0, 1, 1).
namespace ScreenPlaces {

/// The screens that are plugged in, the primary one first; none without a screen. Thread: main.
QList<QRectF> present();

/// How much wider the primary screen is than it is high; that of a cell's grid without a screen.
/// Thread: main.
double aspect();

/// The middle of a cell.
QPointF middleOf(const ClickCell& cell);

/// The screens that `cells` were clicked on, the primary one first: those of `present` where they
/// cover all cells, else as many screens of the primary one's size as the cells ask for. Any
/// thread.
QList<QRectF> covering(const QList<ClickCell>& cells, const QList<QRectF>& present);

/// "Main screen", or on which side of it the screen lies. Any thread.
QString name(const QRectF& place);

} // namespace ScreenPlaces
