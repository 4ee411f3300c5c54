// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/uptime/SessionDays.h"

#include <algorithm>

QList<SessionDay> SessionDays::split(const QList<BootSession>& sessions, const QDate& first,
                                     const QDate& last)
{
    struct Span
    {
        qint64 from, to;
    };

    QList<Span> spans;
    for (const BootSession& session : sessions) {
        spans.append({session.start.toSecsSinceEpoch(), session.end.toSecsSinceEpoch()});
    }
    QList<SessionDay> days;
    qsizetype earliest = 0; // What lies before it ended before the day.
    qint64 begin = first.startOfDay().toSecsSinceEpoch();
    for (QDate day = first; day <= last; day = day.addDays(1)) {
        const qint64 end = day.addDays(1).startOfDay().toSecsSinceEpoch();
        SessionDay& parted =
            days.emplaceBack(SessionDay{.day = day, .seconds = end - begin, .parts = {}});
        while (earliest < spans.size() && spans.at(earliest).to < begin) {
            ++earliest;
        }
        for (qsizetype i = earliest; i < spans.size() && spans.at(i).from < end; ++i) {
            const auto [from, to] = spans.at(i);
            // One that ends at midnight sharp is none of the next day's.
            if (to > begin || from == begin) {
                parted.parts.append({.session = static_cast<int>(i),
                                     .from = std::max(from, begin) - begin,
                                     .to = std::min(to, end) - begin});
            }
        }
        begin = end;
    }
    return days;
}

bool SessionDays::isRunning(const BootSession& session, const QDateTime& now)
{
    constexpr qint64 lateSeconds = 120;
    return session.end.secsTo(now) <= lateSeconds;
}
