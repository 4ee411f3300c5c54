// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/Random.h"

#include <QPointF>

/// Where on the screens somebody clicks. Points are in widths and heights of the primary screen, as
/// they are stored: those on a second screen to its left lie below 0.
class ClickPoints
{
public:
    explicit ClickPoints(Random& random);

    QPointF click();

private:
    QPointF onScreen();

    Random& m_random;
};
