// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/Random.h"

#include <QPointF>

/// Where on the screens somebody clicks. Points are in widths and heights of the primary screen, as
/// they are stored: a second screen beside it lies beyond 1 or, to its left, below 0.
class ClickPoints
{
public:
    enum class SecondScreen
    {
        Left,
        Right,
    };

    explicit ClickPoints(Random& random);

    QPointF click(SecondScreen side);

private:
    QPointF onScreen();

    Random& m_random;
};
