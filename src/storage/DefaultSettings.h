// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QVariant>

#include <utility>
#include <vector>

/// Which settings are stored with a default at the first start, in the order in which they are
/// stored.
namespace DefaultSettings {

using Table = std::vector<std::pair<QString, QVariant>>;

/// Those that are the same everywhere: the fallback of each key.
Table table();

/// Those that depend on the time of the first start and on where the user lives.
Table ofThisMoment(const QDateTime& now);

/// "imperial" where distances are given in miles, "metric" elsewhere.
QString mouseDistanceSystem(QLocale::Territory territory);

} // namespace DefaultSettings
