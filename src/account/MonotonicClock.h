// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <chrono>
#include <functional>

/// Answers the milliseconds since some moment, by a clock that never goes back.
using MonotonicClock = std::function<qint64()>;

/// The system's own such clock.
inline qint64 monotonicMsecs()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}
