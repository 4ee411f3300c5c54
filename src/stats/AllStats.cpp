// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/AllStats.h"

#include "stats/ApplicationBandwidthStat.h"
#include "stats/ApplicationUptimeStat.h"
#include "stats/ApplicationsStat.h"
#include "stats/BootTimeStat.h"
#include "stats/Collector.h"
#include "stats/CountryBandwidthStat.h"
#include "stats/InterfaceBandwidthStat.h"
#include "stats/KeypressesStat.h"
#include "stats/LiveRates.h"
#include "stats/MouseClicksStat.h"
#include "stats/MouseDistanceStat.h"
#include "stats/MouseScrollsStat.h"
#include "stats/ProtocolBandwidthStat.h"
#include "stats/StatSwitches.h"
#include "stats/UptimeStat.h"
#include "storage/Settings.h"

namespace {

CountryBandwidthStat* countries(const Collector& collector)
{
    return collector.getStat<CountryBandwidthStat>(QStringLiteral("CountryBandwidthStat"));
}

} // namespace

void AllStats::addTo(Collector& collector, AbstractSystem* system, LiveRates& rates,
                     QObject* parent)
{
    collector.addStat(new ApplicationsStat(system, parent));
    collector.addStat(new KeypressesStat(system, parent));
    collector.addStat(new MouseClicksStat(system, parent));
    collector.addStat(new BootTimeStat(system, parent));
    collector.addStat(new UptimeStat(system, parent));
    collector.addStat(new ApplicationUptimeStat(system, parent));
    auto* interfaces = new InterfaceBandwidthStat(system, parent);
    QObject::connect(
        interfaces, &InterfaceBandwidthStat::trafficTaken, interfaces,
        [&rates](quint64 download, quint64 upload) { rates.noteTraffic(download, upload); });
    collector.addStat(interfaces);
    collector.addStat(new ApplicationBandwidthStat(system, parent));
    collector.addStat(new ProtocolBandwidthStat(system, parent));
    collector.addStat(new CountryBandwidthStat(system, parent));
    collector.addStat(new MouseScrollsStat(system, parent));
    collector.addStat(new MouseDistanceStat(system, parent));
}

void AllStats::followSettings(const Collector& collector, bool mayCount)
{
    const auto isOn = [](const SettingKey<bool>& key) { return Settings::instance().value(key); };
    for (StatSwitch statSwitch : StatSwitches::fromSettings(isOn)) {
        if (Stat* stat = collector.getStat<Stat>(statSwitch.statistic)) {
            statSwitch.enabled = statSwitch.enabled && mayCount;
            statSwitch.applyTo(*stat);
        }
    }
}

bool AllStats::canFileCountries(const Collector& collector)
{
    const CountryBandwidthStat* statistic = countries(collector);
    return !statistic->isEnabled() || statistic->hasDatabase();
}

void AllStats::reloadCountries(const Collector& collector)
{
    if (CountryBandwidthStat* statistic = countries(collector); statistic->isEnabled()) {
        statistic->reloadGeoDB();
    }
}
