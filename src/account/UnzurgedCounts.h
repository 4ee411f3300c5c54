// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QLatin1String>
#include <QString>

#include <array>
#include <limits>

/// Counts gathered since the last zurge. Plain value; no counter exceeds `CounterLimit`.
struct UnzurgedCounts
{
    quint64 keys = 0;
    quint64 clicks = 0;
    quint64 download = 0;       ///< Bytes.
    quint64 upload = 0;         ///< Bytes.
    quint64 uptime = 0;         ///< Milliseconds here and in the file, whole seconds in the tables.
    quint64 scrolls = 0;        ///< Steps.
    quint64 distanceInches = 0; ///< Whole inches.

    friend bool operator==(const UnzurgedCounts&, const UnzurgedCounts&) = default;
};

/// The largest value a counter takes: what an INTEGER column and a CBOR integer can both hold.
inline constexpr quint64 CounterLimit = std::numeric_limits<qint64>::max();

/// Adds up to `CounterLimit` and stays there, rather than starting again from zero.
constexpr quint64 saturatingSum(quint64 value, quint64 amount)
{
    return amount < CounterLimit - value ? value + amount : CounterLimit;
}

/// One counter under the name it is stored by.
struct UnzurgedCounter
{
    QLatin1String name;
    quint64 UnzurgedCounts::*value = nullptr;
    quint64 perTableUnit = 1;   ///< How many of the counter's units make one of the tables' units.
    quint64 perServiceUnit = 1; ///< As above, of the account service's units.
};

inline constexpr quint64 BytesPerMiB = 1'048'576;
inline constexpr quint64 MsecsPerSecond = 1'000;

/// Every counter once: what reads or writes them all goes through this table.
inline constexpr std::array<UnzurgedCounter, 7> UnzurgedCounters{{
    {QLatin1String("keys"), &UnzurgedCounts::keys, 1, 1},
    {QLatin1String("clicks"), &UnzurgedCounts::clicks, 1, 1},
    {QLatin1String("download"), &UnzurgedCounts::download, 1, BytesPerMiB},
    {QLatin1String("upload"), &UnzurgedCounts::upload, 1, BytesPerMiB},
    {QLatin1String("uptime"), &UnzurgedCounts::uptime, MsecsPerSecond, MsecsPerSecond},
    {QLatin1String("scrolls"), &UnzurgedCounts::scrolls, 1, 1},
    {QLatin1String("distance_inches"), &UnzurgedCounts::distanceInches, 1, 1},
}};

/// What is kept between two runs. Plain value.
struct UnzurgedState
{
    /// Rises by one whenever a state that differs from the last one written is written anywhere, so
    /// that of two stored states the newer one is known without a clock. 0 before the first write.
    quint64 generation = 0;
    UnzurgedCounts totals;
    QHash<QString, UnzurgedCounts> applications; ///< By executable path.

    /// A random text, the same for as long as these counts are carried on: the generations of two
    /// stored states compare only where their lineages are the same. Empty: written by a client
    /// that gave none.
    QString lineage = {};

    /// How many zurges were taken off these counts.
    quint64 settled = 0;

    friend bool operator==(const UnzurgedState&, const UnzurgedState&) = default;
};
