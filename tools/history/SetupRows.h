// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/Statement.h"
#include "history/WorkingLife.h"

#include <QDateTime>

#include <map>

/// What waits to be sent. Plain value.
struct Unsent
{
    qint64 keys = 0;
    qint64 clicks = 0;
    qint64 download = 0; ///< Bytes.
    qint64 upload = 0;
    qint64 uptime = 0; ///< Seconds.
    qint64 inches = 0;
    qint64 scrolls = 0;
};

/// Writes what is there once: profiles, settings, exclusions, what was not sent yet.
class SetupRows
{
public:
    explicit SetupRows(const Connection& connection);

    void writeProfile(Activity profile, const QDateTime& created, bool active);
    void writeSettings(const QDateTime& end);
    void writeUnsent(const Unsent& total, const std::map<std::string_view, Unsent>& applications);

private:
    Statement m_profile;
    Statement m_setting;
    Statement m_unsent;
    Statement m_unsentOfApplication;
    Statement m_lastUpdate;
    Statement m_ignoredApplication;
    Statement m_ignoredInterface;
};
