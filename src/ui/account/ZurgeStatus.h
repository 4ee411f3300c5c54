// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QString>

/// What decides whether a zurge can begin. Plain value.
struct ZurgeFacts
{
    bool isSignedIn = false;
    bool isInProgress = false;
    bool isOffline = false;                 ///< The setting `work_offline`.
    bool hasCounts = false;                 ///< Anything was counted since the last zurge.
    QDateTime begun = {};                   ///< When the last one began; invalid for none.
    QDateTime automaticSuspendedUntil = {}; ///< Invalid where automatic zurges go on.

    friend bool operator==(const ZurgeFacts&, const ZurgeFacts&) = default;
};

/// Whether a zurge can begin at a moment, and the words that say so beside the window's button and
/// in the tray. Plain value.
class ZurgeStatus final
{
    Q_DECLARE_TR_FUNCTIONS(ZurgeStatus)

public:
    /// The first that applies, in the order in which a zurge would be refused.
    enum class State
    {
        NotSignedIn,
        InProgress,
        Offline,
        Throttled, ///< The last one began less than ten seconds ago.
        NothingToSend,
        Suspended, ///< Automatic ones, after failures; by hand it can begin.
        Ready,
    };

    ZurgeStatus() = default;
    ZurgeStatus(const ZurgeFacts& facts, const QDateTime& now);

    State state() const { return m_state; }

    bool canBegin() const { return m_state == State::Ready || m_state == State::Suspended; }

    /// One sentence, or two.
    QString hint() const;

    /// A few words to stand behind "Zurge: "; empty where it can begin.
    QString reason() const;

    /// How soon the status may be another, in milliseconds; 0 where no time decides that.
    qint64 changesInMs() const { return m_changesInMs; }

private:
    State m_state = State::NotSignedIn;
    qint64 m_changesInMs = 0;
    QDateTime m_until; ///< When automatic zurges go on.
};
