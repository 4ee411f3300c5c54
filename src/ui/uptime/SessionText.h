// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistoryTypes.h"

#include <QString>

/// Sessions in words. Thread: any.
namespace SessionText {

/// "Sat 21 Nov".
QString shortDay(const QDate& day);

/// "14:05".
QString clock(const QDateTime& time);

/// "21 November 2026, 14:05".
QString moment(const QDateTime& time);

/// "08:12 to 23:40".
QString clocks(const BootSession& session);

/// "08:12 to 23:40", with the days where they differ.
QString span(const BootSession& session);

/// "3 h 5 min", or "3 h 5 min, going on".
QString length(const BootSession& session, const QDateTime& now);

/// Start, end and length, in two lines.
QString describe(const BootSession& session, const QDateTime& now);

} // namespace SessionText
