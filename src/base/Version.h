// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The version of this build, such as "5.8.3474". Its one source is the project() line of the
/// build.
QString versionString();
