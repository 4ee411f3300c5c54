// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What a code that traffic is filed under is called: the country's name in English, "Local
/// network" for "LAN" and "Unknown" for "??"; the code itself where nobody knows it. Any thread.
QString countryName(const QString& code);
