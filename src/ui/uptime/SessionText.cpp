// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/uptime/SessionText.h"

#include "base/Format.h"
#include "ui/uptime/SessionDays.h"

#include <QCoreApplication>
#include <QLocale>

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("SessionText", text);
}

QString fromTo(const QString& from, const QString& to)
{
    return translated(QT_TRANSLATE_NOOP("SessionText", "%1 to %2")).arg(from, to);
}

} // namespace

QString SessionText::shortDay(const QDate& day)
{
    return QLocale(QLocale::English, QLocale::UnitedStates)
        .toString(day, QStringLiteral("ddd d MMM"));
}

QString SessionText::clock(const QDateTime& time)
{
    return time.toString(QStringLiteral("HH:mm"));
}

QString SessionText::moment(const QDateTime& time)
{
    return QStringLiteral("%1, %2").arg(Format::day(time.date()), clock(time));
}

QString SessionText::length(const BootSession& session, const QDateTime& now)
{
    const QString text = Format::duration(session.start.secsTo(session.end));
    return SessionDays::isRunning(session, now)
               ? translated(QT_TRANSLATE_NOOP("SessionText", "%1, going on")).arg(text)
               : text;
}

QString SessionText::clocks(const BootSession& session)
{
    return fromTo(clock(session.start), clock(session.end));
}

QString SessionText::span(const BootSession& session)
{
    const bool isOneDay = session.start.date() == session.end.date();
    return isOneDay ? clocks(session) : fromTo(moment(session.start), moment(session.end));
}

QString SessionText::describe(const BootSession& session, const QDateTime& now)
{
    const bool isOneDay = session.start.date() == session.end.date();
    const QString day =
        isOneDay ? Format::day(session.start.date()) + QStringLiteral(", ") : QString();
    return day + span(session) + QLatin1Char('\n') + length(session, now);
}
