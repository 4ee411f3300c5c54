// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/SettingKey.h"

#include <QList>
#include <QString>

#include <functional>
#include <optional>

class Stat;

/// How one statistic is switched. Plain value.
struct StatSwitch
{
    QString statistic; ///< Its class name.
    bool enabled = false;
    std::optional<bool> perApplication = {}; ///< Only for those that file counts per application.
    std::optional<bool> heatmap = {};        ///< Only for those that have a heat map.

    /// Sets what is given; on or off last, so that a statistic starts as it is meant to run.
    void applyTo(Stat& stat) const;

    friend bool operator==(const StatSwitch&, const StatSwitch&) = default;
};

/// The switches of all statistics.
namespace StatSwitches {

using IsOn = std::function<bool(const SettingKey<bool>&)>;

/// What the settings, as `isOn` answers for them, mean for each statistic. Depends on nothing else.
QList<StatSwitch> fromSettings(const IsOn& isOn);

} // namespace StatSwitches
