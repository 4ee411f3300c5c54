// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStandardPaths>
#include <QString>

/// The standard paths, with the per-user data location inside the Snap where the program runs as
/// one: a Snap may write below `SNAP_USER_DATA`, while `XDG_DATA_HOME` may still name the real
/// home.
namespace SnapStandardPaths {

/// The directory to write to, without a trailing slash; it may not exist yet. `AppDataLocation` and
/// `AppLocalDataLocation` give "<root>/Tallyvane", where root is `$SNAP_USER_DATA/.local/share`,
/// else `$XDG_DATA_HOME`, else "~/.local/share"; every other location is Qt's own answer. Any
/// thread.
QString writableLocation(QStandardPaths::StandardLocation location);

/// Creates `directory` and its missing parents, readable by this user alone (mode 0700). An
/// existing directory keeps its mode. Returns false where it could not be created.
bool createPrivateDirectory(const QString& directory);

} // namespace SnapStandardPaths
