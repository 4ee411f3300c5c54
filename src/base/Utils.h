// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Small values that several rooms share.
namespace Utils {

/// The transport that traffic used. The values are stored and sent, so they never change.
enum class TrafficType
{
    Other = 0,
    Tcp = 1,
    Udp = 2,
};

/// The direction of a wheel step. The values are those of `mousescrolls.direction`.
enum class ScrollDirection
{
    Up = 1,
    Down = 2,
    Left = 3,
    Right = 4,
};

/// The primary screen's logical dots per inch, truncated; 96 without a screen. Main thread.
int detectSystemDPI();

} // namespace Utils
