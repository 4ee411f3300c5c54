// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/MouseTravel.h"

#include <algorithm>
#include <chrono>
#include <utility>

MouseTravel::MouseTravel(std::function<int()> dpi)
    : m_readDpi(std::move(dpi))
{
}

float MouseTravel::inches(int pixels)
{
    using namespace std::chrono_literals;
    constexpr std::chrono::milliseconds readAgainAfter = 120s;
    if (pixels < 1) {
        return 0.0F;
    }
    if (!m_lastRead.isValid() || m_lastRead.hasExpired(readAgainAfter.count())) {
        m_dpi = std::max(1, m_readDpi());
        m_lastRead.start();
    }
    const int wholeInches = pixels / m_dpi;
    return static_cast<float>(wholeInches);
}
