// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/uptime/SessionRaster.h"

#include <QString>

/// What a time line of sessions shows, lane by lane. A lane is one day as a row, or, where there
/// are too many for rows, a column of one or more days. Plain value; thread: any.
class SessionPlan
{
public:
    /// More days than this become columns.
    static constexpr int MostRows = 45;

    SessionPlan() = default;

    /// `sessions` are in the order of their starts.
    SessionPlan(const QList<BootSession>& sessions, const QDate& first, const QDate& last);

    const QList<BootSession>& sessions() const { return m_sessions; }

    const QList<SessionDay>& days() const { return m_days; }

    /// Empty where lanes are rows.
    const SessionRaster& raster() const { return m_raster; }

    bool isRaster() const { return m_raster.columns() > 0; }

    int laneCount() const;
    QDate firstDay(int lane) const;
    QDate lastDay(int lane) const;

    /// The seconds that a lane has room for.
    qint64 laneSeconds() const;

    /// "Sat 21 Nov", with the length of a day on which the clock changes.
    QString rowLabel(int row) const;

    /// The days of a lane and how long the machine was on.
    QString describeLane(int lane) const;

    /// What there is at a place of a lane, up to `slack` seconds beside it: a session, or how much
    /// of the time the machine was on. Seconds count as the lane shows them. Empty beyond the day.
    QString describe(int lane, qint64 seconds, qint64 slack, const QDateTime& now) const;

private:
    qint64 sinceDayBegan(int lane, qint64 seconds) const;
    QString describeSlot(int lane, qint64 seconds) const;

    QList<BootSession> m_sessions;
    QList<SessionDay> m_days;
    SessionRaster m_raster;
};
