// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/ClickPoints.h"

#include <algorithm>

namespace {

/// A part of the screen that draws clicks.
struct HotSpot
{
    double weight;
    double x;
    double y;
    double spreadX;
    double spreadY;
};

constexpr std::array HotSpots{
    HotSpot{10, 0.12, 0.022, 0.11, 0.012},  // menus
    HotSpot{12, 0.32, 0.055, 0.28, 0.012},  // tabs
    HotSpot{30, 0.48, 0.48, 0.3, 0.34},     // what the window shows
    HotSpot{12, 0.5, 0.5, 0.06, 0.08},      // dialogs
    HotSpot{9, 0.09, 0.42, 0.07, 0.3},      // side bars
    HotSpot{5, 0.992, 0.5, 0.005, 0.4},     // scroll bars
    HotSpot{6, 0.985, 0.015, 0.012, 0.01},  // closing a window
    HotSpot{3, 0.004, 0.004, 0.004, 0.004}, // the corner of the launcher
    HotSpot{8, 0.3, 0.985, 0.26, 0.01},     // task bar
    HotSpot{3, 0.965, 0.985, 0.03, 0.01},   // tray and clock
};

constexpr auto makeWeights()
{
    std::array<double, HotSpots.size()> weights{};
    std::ranges::transform(HotSpots, weights.begin(), &HotSpot::weight);
    return weights;
}

constexpr std::array Weights = makeWeights();

/// The last place a pointer reaches, on a screen of 1920 by 1080 dots.
constexpr double LastColumn = 1919.0 / 1920;
constexpr double LastRow = 1079.0 / 1080;

} // namespace

ClickPoints::ClickPoints(Random& random)
    : m_random(random)
{
}

QPointF ClickPoints::click()
{
    constexpr double onSecondScreen = 0.24;
    const QPointF point = onScreen();
    if (!m_random.chance(onSecondScreen)) {
        return point;
    }
    return point - QPointF(1, 0);
}

QPointF ClickPoints::onScreen()
{
    const HotSpot& spot = HotSpots.at(m_random.pick(Weights));
    return {std::clamp(m_random.around(spot.x, spot.spreadX), 0.0, LastColumn),
            std::clamp(m_random.around(spot.y, spot.spreadY), 0.0, LastRow)};
}
