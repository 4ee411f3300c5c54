// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class AbstractSystem;
class Collector;
class QObject;

/// The statistics that the client keeps.
namespace AllStats {

/// Creates one of each, switched off and owned by `parent`, and lets `collector` tick them.
/// `Database`, `LocalStats` must exist; `system` must outlive the statistics. Thread: main.
void addTo(Collector& collector, AbstractSystem* system, QObject* parent);

/// Switches each as the settings say; while counting is not allowed, all off.
void followSettings(const Collector& collector, bool mayCount);

} // namespace AllStats
