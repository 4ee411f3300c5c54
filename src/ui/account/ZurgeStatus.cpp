// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/account/ZurgeStatus.h"

#include <QLocale>

namespace {

constexpr qint64 ThrottleMs = 10'000;
constexpr qint64 SecondMs = 1000;

/// What is left of the throttle; 0 for none, also where the clock was set back meanwhile.
qint64 throttleLeft(const ZurgeFacts& facts, const QDateTime& now)
{
    if (!facts.begun.isValid()) {
        return 0;
    }
    const qint64 elapsed = facts.begun.msecsTo(now);
    return elapsed >= 0 && elapsed < ThrottleMs ? ThrottleMs - elapsed : 0;
}

} // namespace

ZurgeStatus::ZurgeStatus(const ZurgeFacts& facts, const QDateTime& now)
    : m_until(facts.automaticSuspendedUntil)
{
    const qint64 throttle = throttleLeft(facts, now);
    if (!facts.isSignedIn) {
        m_state = State::NotSignedIn;
    } else if (facts.isInProgress) {
        m_state = State::InProgress;
    } else if (facts.isOffline) {
        m_state = State::Offline;
    } else if (throttle > 0) {
        m_state = State::Throttled;
        m_changesInMs = throttle;
    } else if (!facts.hasCounts) {
        m_state = State::NothingToSend;
    } else if (m_until.isValid() && m_until > now) {
        m_state = State::Suspended;
        m_changesInMs = now.msecsTo(m_until);
    } else {
        m_state = State::Ready;
    }
}

QString ZurgeStatus::hint() const
{
    switch (m_state) {
    case State::NotSignedIn:
        return tr("No account is linked, so nothing is sent.");
    case State::InProgress:
        return tr("Your counts are on their way.");
    case State::Offline:
        return tr("Tallyvane works offline, so nothing is sent.");
    case State::Throttled:
        return tr("The last zurge was just now. The next can begin in %1 s.")
            .arg((m_changesInMs + SecondMs - 1) / SecondMs);
    case State::NothingToSend:
        return tr("Nothing was counted since the last zurge.");
    case State::Suspended:
        return tr("Automatic zurges failed and rest until %1. You can zurge by hand.")
            .arg(QLocale::c().toString(m_until.time(), QStringLiteral("HH:mm")));
    case State::Ready:
        break;
    }
    return tr("Sends what was counted since the last zurge to your account.");
}

QString ZurgeStatus::reason() const
{
    switch (m_state) {
    case State::NotSignedIn:
        return tr("no account");
    case State::InProgress:
        return tr("on its way");
    case State::Offline:
        return tr("working offline");
    case State::Throttled:
        return tr("just done");
    case State::NothingToSend:
        return tr("nothing to send");
    case State::Suspended:
    case State::Ready:
        break;
    }
    return {};
}
