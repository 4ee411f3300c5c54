// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LinkedClient.h"
#include "app/CountingSwitch.h"
#include "profiles/Milestones.h"
#include "stats/AllStats.h"
#include "stats/Collector.h"
#include "stats/LiveRates.h"
#include "system/CommonSystem.h"

#include <memory>

/// A client with an account service and all that counts, stopped.
class CountingClient : public LinkedClient
{
public:
    CountingClient() { AllStats::addTo(collector, system.get(), rates, &collector); }

    std::unique_ptr<CommonSystem> system =
        CommonSystem::createPlatformSpecificSystem(database.database(), nullptr);
    Collector collector{nullptr};
    LiveRates rates;
    CountingSwitch counting{*database.database(), collector, *system};
    Milestones milestones;
};
