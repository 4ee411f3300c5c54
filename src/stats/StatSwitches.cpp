// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/StatSwitches.h"

#include "stats/Stat.h"
#include "storage/SettingsKeys.h"

void StatSwitch::applyTo(Stat& stat) const
{
    if (perApplication) {
        stat.setPerApplication(*perApplication);
    }
    if (heatmap) {
        stat.setHeatmap(*heatmap);
    }
    stat.setEnabled(enabled);
}

QList<StatSwitch> StatSwitches::fromSettings(const IsOn& isOn)
{
    using namespace SettingsKeys;
    const bool input = isOn(StatsInputEnable);
    const bool uptime = isOn(StatsUptimeEnable);
    const bool network = isOn(StatsNetEnable);
    const bool keyboard = input && isOn(StatKeyboardEnable);
    const bool mouse = input && isOn(StatMouseEnable);
    const bool inputPerApplication = input && isOn(StatInputApplicationsEnable);
    // Whatever is filed or sent per application needs the list of applications.
    const bool applications = isOn(StatApplicationEnable) || isOn(StatNetApplicationEnable) ||
                              isOn(StatInputApplicationsEnable) || isOn(OnlineSendApplications);
    return {
        {QStringLiteral("ApplicationsStat"), applications},
        {QStringLiteral("KeypressesStat"), keyboard, inputPerApplication,
         keyboard && isOn(StatKeyboardHeatmapEnable)},
        {QStringLiteral("MouseClicksStat"), mouse, inputPerApplication,
         mouse && isOn(StatMouseHeatmapEnable)},
        {QStringLiteral("BootTimeStat"), uptime && isOn(StatBootEnable)},
        {QStringLiteral("UptimeStat"), uptime && isOn(StatUptimeEnable)},
        {QStringLiteral("ApplicationUptimeStat"), uptime && isOn(StatApplicationEnable)},
        {QStringLiteral("InterfaceBandwidthStat"), network && isOn(StatNetInterfaceEnable)},
        {QStringLiteral("ApplicationBandwidthStat"), network && isOn(StatNetApplicationEnable)},
        {QStringLiteral("ProtocolBandwidthStat"), network && isOn(StatNetProtocolEnable)},
        {QStringLiteral("CountryBandwidthStat"), network && isOn(StatNetCountryEnable)},
        {QStringLiteral("MouseScrollsStat"), mouse, inputPerApplication},
        {QStringLiteral("MouseDistanceStat"), mouse, inputPerApplication},
    };
}
