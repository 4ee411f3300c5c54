// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistoryTypes.h"

#include <QDate>
#include <QList>

/// The part of one session that lies on one day. Plain value.
struct SessionPart
{
    int session = 0; ///< Its index in the list that was split.
    qint64 from = 0; ///< Seconds since the day's first moment, whatever the clock says.
    qint64 to = 0;   ///< Not before `from`.
    friend bool operator==(const SessionPart&, const SessionPart&) = default;
};

/// One local day. Plain value.
struct SessionDay
{
    QDate day;
    qint64 seconds = 0; ///< Its length: 82,800 or 90,000 where the clock changes.
    QList<SessionPart> parts;

    bool isShifted() const { return seconds != UsualSeconds; }

    static constexpr qint64 UsualSeconds = 86'400;
};

/// Splitting sessions by local days. Thread: any.
namespace SessionDays {

/// Every day from `first` to `last` with the parts of `sessions`, which are in the order of their
/// starts.
QList<SessionDay> split(const QList<BootSession>& sessions, const QDate& first, const QDate& last);

/// Whether a session still goes on at `now`: its end is moved on once a minute.
bool isRunning(const BootSession& session, const QDateTime& now);

} // namespace SessionDays
