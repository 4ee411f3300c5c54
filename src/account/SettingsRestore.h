// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

class Database;
class Milestones;

/// Takes over the settings that the account service keeps of this computer or another one.
/// Thread: main.
namespace SettingsRestore {

/// Whether a setting from elsewhere may be stored here: what the user chose, and nothing of what
/// one computer remembers, of how it reaches the network, or of who may ask it.
bool mayTravel(const QString& name);

/// Stores what `clientSettings`, as the service hands it out, holds of settings, labels of the Geek
/// Window and exclusions, and adds the milestones that there are none like. What is not as it
/// should be is passed over. The database must be open and not lent; the exclusions are to be
/// loaded anew, and the settings applied.
void restore(const QMap<QString, QVariant>& clientSettings, Database& database,
             Milestones& milestones);

} // namespace SettingsRestore
