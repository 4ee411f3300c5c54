// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Portable mode: the data lies beside the executable instead of in the user's data directory, as
/// on a memory stick. The file "tallyvane.portable" beside the executable switches it on.
namespace PortableMode {

/// Whether the marker exists.
bool isActive();

/// The directory of the executable, where the marker and, in portable mode, the data lie.
QString directory();

/// Switches the mode for the next start: copies the database and the local totals to the directory
/// that will be used then, unless it has a database of its own, and creates or removes the marker.
/// Returns false, with the marker unchanged and a log line, where a file cannot be written. The
/// database should be closed.
bool toggle(const QString& userDirectory);

} // namespace PortableMode
