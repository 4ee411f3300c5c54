// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>
#include <QPointF>
#include <QRect>

/// Where a click was, in sizes of the primary screen: (0, 0) is its top left corner, (1, 1) its
/// bottom right one. A position on a screen right of or below it folds back onto its square; one
/// left of or above it stays negative. Without a screen (an empty rectangle) the answer is (0, 0).
/// Any thread.
QPointF clickPosition(const QPoint& cursor, const QRect& primaryScreen);
