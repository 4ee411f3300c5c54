// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class AbstractSystem;
class Collector;
class LiveRates;
class QObject;

/// The statistics that the client keeps.
namespace AllStats {

/// Creates one of each, switched off and owned by `parent`, and lets `collector` tick them.
/// `rates` is told of the traffic. `Database`, `LocalStats` must exist; `system` and `rates` must
/// outlive the statistics. Thread: main.
void addTo(Collector& collector, AbstractSystem* system, LiveRates& rates, QObject* parent);

/// Switches each as the settings say; while counting is not allowed, all off.
void followSettings(const Collector& collector, bool mayCount);

/// Whether traffic can be filed by country; also where that is switched off, as then nothing lacks.
bool canFileCountries(const Collector& collector);

/// A newer country database lies there.
void reloadCountries(const Collector& collector);

} // namespace AllStats
