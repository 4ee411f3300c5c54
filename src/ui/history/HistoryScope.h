// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>

#include <optional>

/// Which counts a view shows: some days, and one profile or all. Plain value.
struct HistoryScope
{
    QDate first{};                  ///< Included; null means from the first day on.
    QDate last{};                   ///< Included.
    std::optional<int> profileId{}; ///< None means all profiles.

    bool contains(const QDate& day) const
    {
        return (first.isNull() || day >= first) && day <= last;
    }

    bool isOneDay() const { return first == last; }

    friend bool operator==(const HistoryScope&, const HistoryScope&) = default;
};
