// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/KeyMix.h"
#include "history/WorkingLife.h"

#include <span>

/// How an application is used in a minute in front.
struct Pace
{
    Typing typing = Typing::Browsing;
    double keys = 0;
    double clicks = 0;
    double scrolls = 0;
    double inches = 0;   ///< Of pointer travel.
    double download = 0; ///< KiB.
    double upload = 0;   ///< KiB.
};

struct Application
{
    const char* path = nullptr;
    const char* name = nullptr;
    std::array<double, Activities.size()> liking{}; ///< How willingly it is used, by activity.
    const Pace* pace = nullptr;
    double from = 0; ///< When it came into use, and out of it: shares of the whole history.
    double to = 1;
};

/// Sixty programs that the person of this history uses, or used once.
std::span<const Application> applicationCatalog();
