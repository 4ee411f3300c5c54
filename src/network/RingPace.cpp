// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/RingPace.h"

#include <algorithm>

using namespace std::chrono_literals;

namespace {

/// Stands for no sleep at all, of which no proportion could be taken.
constexpr std::chrono::microseconds ShortestMeasure = 500us;

} // namespace

// Follows the rate of the packets: a sleep that depended on the filled frames alone would jump
// between too long, after a short sleep that found few, and too short. A pause in the flood does
// not bring back the long sleep at once: each one at most doubles.
std::chrono::microseconds RingPace::nextSleep(std::chrono::microseconds lastSleep,
                                              std::size_t filled)
{
    if (filled >= PacketRing::FrameCount) {
        return 0us;
    }
    const std::chrono::microseconds measure = std::max(lastSleep, ShortestMeasure);
    const auto frames = static_cast<int>(std::max(filled, WantedFrames / 2));
    return std::min(LongestSleep, measure * static_cast<int>(WantedFrames) / frames);
}
