// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QVariant>

#include <optional>

/// What the account holds in all, as the service tells it. Plain value.
struct OnlineTotals
{
    qint64 keys = 0;
    qint64 clicks = 0;
    qint64 download = 0; ///< MiB.
    qint64 upload = 0;   ///< MiB.
    qint64 uptime = 0;   ///< Seconds.
    qint64 scrolls = 0;  ///< Steps.
    double distanceMiles = 0;

    friend bool operator==(const OnlineTotals&, const OnlineTotals&) = default;
};

/// The account's place among all by each of the totals; 0: none. Plain value.
struct OnlineRanks
{
    qint64 keys = 0;
    qint64 clicks = 0;
    qint64 download = 0;
    qint64 upload = 0;
    qint64 uptime = 0;
    qint64 scrolls = 0;
    qint64 distance = 0;

    friend bool operator==(const OnlineRanks&, const OnlineRanks&) = default;
};

namespace OnlineFigures {

/// A number from 0 without a fraction, up to what 64 bits hold; a text of digits is none.
std::optional<qint64> wholeNumber(const QVariant& value);

/// From the service's object; nothing where a total is missing, of another type, or negative.
std::optional<OnlineTotals> totalsFrom(const QVariant& object);

/// As above.
std::optional<OnlineRanks> ranksFrom(const QVariant& object);

/// Keep the figures in the settings, where the views find them.
void store(const OnlineTotals& totals);
void store(const OnlineRanks& ranks);

/// What was kept last; zeros where nothing was.
OnlineTotals storedTotals();
OnlineRanks storedRanks();

} // namespace OnlineFigures
