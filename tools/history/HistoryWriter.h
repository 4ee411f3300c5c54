// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/InputRows.h"
#include "history/MilestoneLog.h"
#include "history/NetworkRows.h"
#include "history/SetupRows.h"
#include "history/UptimeRows.h"

/// Writes a history into a new database of the client, table by table. Throws `HistoryError`.
class HistoryWriter
{
public:
    /// `database` must have the client's schema and no rows.
    HistoryWriter(const QString& database, Random& random, const QDateTime& first,
                  const QDateTime& end);

    void writeHour(const HourCounts& hour);
    void writeBoot(const QDateTime& boot, const QDateTime& end);
    void writeProfile(Activity profile, const QDateTime& created, bool active);

    /// Stores what sums up the whole history, and completes the file.
    void finish();

private:
    void noteUnsent(const HourCounts& hour, const InputTotals& input, const NetworkTotals& network);

    QDateTime m_end;
    Connection m_connection;
    InputRows m_input;
    UptimeRows m_uptime;
    NetworkRows m_network;
    SetupRows m_setup;
    MilestoneLog m_milestones;
    Unsent m_unsent;
    std::map<std::string_view, Unsent> m_unsentOfApplications;
};
