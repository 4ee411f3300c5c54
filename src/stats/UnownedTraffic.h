// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/NetworkTraffic.h"

#include <QDateTime>
#include <QHash>
#include <QSet>
#include <QString>

#include <chrono>
#include <utility>

/// An application's executable, and the profile under which it was used.
using ApplicationInProfile = std::pair<QString, int>;
using ApplicationTraffic = QHash<ApplicationInProfile, NetworkTraffic>;

/// Traffic of local ports that belong to no known application yet, under the profile in which it
/// was captured. It is kept for `LongestWait` at most, of `MostPorts` ports at most; what goes
/// beyond is dropped, and the log says how much. Thread: main.
class UnownedTraffic final
{
public:
    static constexpr qsizetype MostPorts = 4'096;
    static constexpr std::chrono::milliseconds LongestWait = std::chrono::minutes(5);

    void add(unsigned short port, int profileId, const NetworkTraffic& traffic,
             const QDateTime& now);

    /// Drops what has waited too long, or since a time that is yet to come.
    void dropOld(const QDateTime& now);
    void dropAll();

    /// Says once, at debug level, what was dropped since the last call.
    void reportDropped();

    /// The ports that have traffic waiting.
    QSet<unsigned short> ports() const;

    /// Takes the traffic of the ports that have an owner now.
    ApplicationTraffic takeOwned(const QHash<unsigned short, QString>& owners);

private:
    using PortInProfile = std::pair<unsigned short, int>;

    /// What one port's traffic has come to. Plain value.
    struct Waiting
    {
        NetworkTraffic traffic;
        qint64 sinceMs = 0; ///< Since the epoch, of the first of it.
    };

    void drop(const NetworkTraffic& traffic);

    QHash<PortInProfile, Waiting> m_waiting;
    qsizetype m_droppedPorts = 0;
    NetworkTraffic m_dropped;
};
