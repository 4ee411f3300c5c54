// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/uptime/SessionPlan.h"

#include "base/Format.h"
#include "ui/uptime/SessionText.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 HourSeconds = 3600;

QString translated(const char* text)
{
    return QCoreApplication::translate("SessionPlan", text);
}

} // namespace

SessionPlan::SessionPlan(const QList<BootSession>& sessions, const QDate& first, const QDate& last)
    : m_sessions(sessions)
    , m_days(SessionDays::split(sessions, first, last))
{
    if (m_days.size() > MostRows) {
        m_raster = SessionRaster(m_days);
    }
}

int SessionPlan::laneCount() const
{
    return isRaster() ? m_raster.columns() : static_cast<int>(m_days.size());
}

QDate SessionPlan::firstDay(int lane) const
{
    return isRaster() ? m_raster.firstDay(lane) : m_days.at(lane).day;
}

QDate SessionPlan::lastDay(int lane) const
{
    return isRaster() ? m_raster.lastDay(lane) : m_days.at(lane).day;
}

qint64 SessionPlan::laneSeconds() const
{
    qint64 seconds = SessionDay::UsualSeconds;
    if (isRaster()) {
        return seconds;
    }
    if (m_days.size() == 1) {
        return m_days.constFirst().seconds;
    }
    for (const SessionDay& day : m_days) {
        seconds = std::max(seconds, day.seconds);
    }
    return seconds;
}

QString SessionPlan::rowLabel(int row) const
{
    const SessionDay& day = m_days.at(row);
    const QString text = SessionText::shortDay(day.day);
    return day.isShifted() ? translated(QT_TRANSLATE_NOOP("SessionPlan", "%1 (%2 h)"))
                                 .arg(text)
                                 .arg(day.seconds / HourSeconds)
                           : text;
}

QString SessionPlan::describeLane(int lane) const
{
    const QDate first = firstDay(lane);
    const QDate last = lastDay(lane);
    qint64 seconds = 0;
    const qint64 from = m_days.constFirst().day.daysTo(first);
    for (qint64 i = from; i <= from + first.daysTo(last); ++i) {
        for (const SessionPart& part : m_days.at(i).parts) {
            seconds += part.to - part.from;
        }
    }
    const QString days = first == last ? Format::day(first)
                                       : translated(QT_TRANSLATE_NOOP("SessionPlan", "%1 to %2"))
                                             .arg(Format::day(first), Format::day(last));
    const QString on = seconds > 0 ? translated(QT_TRANSLATE_NOOP("SessionPlan", "On for %1"))
                                         .arg(Format::duration(seconds))
                                   : translated(QT_TRANSLATE_NOOP("SessionPlan", "Off"));
    return days + QLatin1Char('\n') + on;
}

qint64 SessionPlan::sinceDayBegan(int lane, qint64 seconds) const
{
    if (!isRaster()) {
        return seconds;
    }
    // Columns show the hours of the clock.
    const QTime time = QTime(0, 0).addSecs(static_cast<int>(seconds));
    const QDate day = firstDay(lane);
    return day.startOfDay().secsTo(QDateTime(day, time));
}

QString SessionPlan::describeSlot(int lane, qint64 seconds) const
{
    constexpr double percent = 100;
    constexpr int slotSeconds = HourSeconds / SessionRaster::SlotsPerHour;
    const auto slot = static_cast<int>(seconds) / slotSeconds;
    const auto share = static_cast<double>(m_raster.share(lane, slot).value_or(0));
    return translated(QT_TRANSLATE_NOOP("SessionPlan", "From %1: on for %2 % of the time"))
        .arg(QTime(0, 0).addSecs(slot * slotSeconds).toString(QStringLiteral("HH:mm")))
        .arg(std::lround(percent * share));
}

QString SessionPlan::describe(int lane, qint64 seconds, qint64 slack, const QDateTime& now) const
{
    seconds = std::clamp<qint64>(seconds, 0, laneSeconds() - 1);
    if (firstDay(lane) != lastDay(lane)) {
        return describeLane(lane) + QLatin1Char('\n') + describeSlot(lane, seconds);
    }
    const SessionDay& day = m_days.at(m_days.constFirst().day.daysTo(firstDay(lane)));
    const qint64 at = sinceDayBegan(lane, seconds);
    if (at >= day.seconds) {
        return {};
    }
    int nearest = -1;
    qint64 leastAway = slack + 1;
    for (const SessionPart& part : day.parts) {
        const qint64 away = std::max({qint64(0), part.from - at, at - part.to});
        if (away < leastAway) {
            leastAway = away;
            nearest = part.session;
        }
    }
    return nearest < 0 ? describeLane(lane) : SessionText::describe(m_sessions.at(nearest), now);
}
