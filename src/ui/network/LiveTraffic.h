// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/TrafficTypes.h"

#include <QHash>
#include <QList>
#include <QStringList>

#include <map>
#include <optional>

/// What crossed one interface in one second, or in the minute that begins with it. Plain value.
struct SecondTraffic
{
    qint64 second = 0; ///< Since 1970, UTC.
    QString macAddress;
    TrafficTotals traffic;
    friend bool operator==(const SecondTraffic&, const SecondTraffic&) = default;
};

/// The traffic of the last hour, for charts that follow it. Times are in seconds since 1970, UTC.
/// Thread: main.
class LiveTraffic
{
public:
    static constexpr int SlotCount = 60;
    static constexpr int SecondsPerMinute = 60;

    /// Of each slot of a chart, the bytes per second; nothing where nothing was known yet.
    using Rates = QList<std::optional<TrafficTotals>>;

    /// Takes what was read, in place of what was known of the same seconds, and forgets what is
    /// older than any chart shows.
    void take(const QList<SecondTraffic>& traffic);

    void clear();

    bool isEmpty() const { return m_seconds.empty(); }

    /// Nothing where there is none.
    std::optional<qint64> newest() const;

    /// The MAC addresses of those with traffic, sorted.
    QStringList interfaces() const;

    /// The last whole seconds before `now`, of one interface or, where `macAddress` is empty, of
    /// all.
    Rates seconds(qint64 now, const QString& macAddress) const;

    /// The last minutes of the clock, of which the present one is the last.
    Rates minutes(qint64 now, const QString& macAddress) const;

    static qint64 firstMinute(qint64 now);

private:
    using PerInterface = QHash<QString, TrafficTotals>;

    TrafficTotals sum(qint64 first, qint64 last, const QString& macAddress) const;

    std::map<qint64, PerInterface> m_seconds;
};
