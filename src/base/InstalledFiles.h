// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The path of a data file that the program ships, as `name` in share/tallyvane: beside the
/// directory of the executable, as in a build and in an installation that was moved, else where the
/// build was told to install. Empty where there is no such file. Needs the application object.
QString installedFile(const QString& name);
