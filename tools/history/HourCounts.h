// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/ApplicationCatalog.h"

#include <QDate>
#include <QPointF>

#include <numeric>
#include <vector>

/// The buttons of a mouse as they are stored: left, right, middle, any other.
inline constexpr std::array Buttons{0, 1, 2, 99};

/// The directions of a wheel as they are stored: up, down, left, right.
inline constexpr std::array Directions{1, 2, 3, 4};

/// What was done in one application in one hour. Plain value.
struct ApplicationHour
{
    const Application* application = nullptr;
    int secondsInFront = 0;
    std::vector<PressedKey> keys;
    int unknownKeys = 0; ///< Keys without a name: counted, and no more known of them.
    std::vector<ComboCount> combos;
    std::array<int, Buttons.size()> clicks{};
    std::array<int, Directions.size()> scrolls{};
    int inches = 0;
    qint64 download = 0; ///< Bytes.
    qint64 upload = 0;

    int keystrokes() const
    {
        return std::accumulate(keys.begin(), keys.end(), unknownKeys,
                               [](int sum, const PressedKey& key) { return sum + key.count; });
    }

    int allClicks() const { return std::accumulate(clicks.begin(), clicks.end(), 0); }

    int allScrolls() const { return std::accumulate(scrolls.begin(), scrolls.end(), 0); }
};

/// What was done in one hour under one profile. Plain value.
struct HourCounts
{
    QDate day;
    int hour = 0;
    int profile = 0;
    qint64 msecOn = 0;
    std::vector<ApplicationHour> inFront;    ///< Each application once.
    std::vector<const Application*> running; ///< Each once.
    std::vector<QPointF> points;
};
