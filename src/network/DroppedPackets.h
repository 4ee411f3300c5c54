// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/RepeatedWarning.h"

#include <QtGlobal>

#include <chrono>

/// Says in the log how many packets were lost, not more often than once in a while, and forgets
/// none meanwhile. One thread at a time.
class DroppedPackets final
{
public:
    explicit DroppedPackets(std::chrono::milliseconds pause);

    /// Adds packets, also none, and reports all that are due.
    void add(quint64 packets);

    /// Reports what was not reported yet, however short the pause was.
    void report();

private:
    RepeatedWarning m_warning;
    quint64 m_unreported = 0;
};
