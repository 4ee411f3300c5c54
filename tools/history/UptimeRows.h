// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/HourCounts.h"
#include "history/Statement.h"

#include <QDateTime>

#include <map>

/// Writes how long the computer and its applications were up. As the client does, it stores a boot
/// in local time, and its end and the last use of an application in UTC.
class UptimeRows
{
public:
    explicit UptimeRows(const Connection& connection);

    void writeHour(const HourCounts& hour);

    /// Returns the seconds between the two times as stored.
    qint64 writeBoot(const QDateTime& boot, const QDateTime& end);

    /// Stores the applications, with their whole running time.
    void finish();

private:
    struct Running
    {
        qint64 seconds = 0;
        QDateTime lastActive;
    };

    Statement m_hour;
    Statement m_applicationHour;
    Statement m_boot;
    Statement m_applicationUptime;
    Statement m_application;
    /// By application and profile; ordered by path, since addresses differ from run to run.
    std::map<std::pair<std::string_view, int>, Running> m_running;
    std::map<std::string_view, QDateTime> m_lastUsed;
};
