// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/PacketRing.h"

#include <chrono>
#include <cstddef>

/// How long to let packets gather in the ring between two walks over it.
namespace RingPace {

/// While the ring is mostly empty.
inline constexpr std::chrono::microseconds LongestSleep{20'000};

/// After this much of a sleep the ring is looked at: a flood that began meanwhile would fill it
/// before the sleep is over, at 102,400 packets a second.
inline constexpr std::chrono::microseconds LookAfter = LongestSleep / 2;

/// The frames that a walk should find at most: a quarter of the ring. The rest is there for the
/// moments in which the thread gets no processor.
inline constexpr std::size_t WantedFrames = PacketRing::FrameCount / 4;

/// The sleep after a walk that found `filled` frames, having slept `lastSleep` before it: longer or
/// shorter in the proportion in which the walk found fewer or more frames than wanted, and none
/// where the whole ring was filled.
std::chrono::microseconds nextSleep(std::chrono::microseconds lastSleep, std::size_t filled);

} // namespace RingPace
