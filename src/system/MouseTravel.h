// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>

#include <functional>

/// Turns pointer travel from pixels into whole inches. Thread: main.
class MouseTravel
{
public:
    /// `dpi` gives the dots per inch; asked at most every 120 s.
    explicit MouseTravel(std::function<int()> dpi);

    /// Pixels divided by the dots per inch, as whole numbers: what is left below an inch is
    /// dropped. 0 below one pixel.
    float inches(int pixels);

private:
    std::function<int()> m_readDpi;
    QElapsedTimer m_lastRead;
    int m_dpi = 0;
};
