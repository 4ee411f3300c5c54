// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QObject>
#include <QTimer>

#include <functional>
#include <optional>

class LocalStats;

/// Starts zurges without the user: at a count, at an hour of the day, or every hour. Thread: main.
class AutoZurging : public QObject
{
    Q_OBJECT

public:
    static constexpr int CheckIntervalMs = 60'000;

    explicit AutoZurging(LocalStats& localStats, QObject* parent = nullptr,
                         std::function<QDateTime()> now = QDateTime::currentDateTime);

    void start();           ///< Checks every minute from now on.
    void refreshSettings(); ///< Reads the thresholds and the hour anew.

public Q_SLOTS:
    void checkForZurge(); ///< Starts at most one zurge.

private:
    /// The counts at which to zurge, in the units of the settings page; nothing where a rule is
    /// off.
    struct Thresholds
    {
        std::optional<quint64> keys;
        std::optional<quint64> clicks;
        std::optional<quint64> uptimeHours;
        std::optional<quint64> downloadMiB;
        std::optional<quint64> uploadMiB;
    };

    struct ClockRule
    {
        bool enabled = false;
        int hour = 0;    ///< `EveryHour` for each.
        int weekday = 0; ///< As `QDate::dayOfWeek`; 0 for all.
    };

    bool zurgeOnCount();
    void zurgeOnTime(const QDateTime& now);
    void zurgeHourly(const QDateTime& now);
    void zurgeAtHour(const QDateTime& now);
    bool isWeekday(const QDateTime& now) const;

    LocalStats& m_localStats;
    std::function<QDateTime()> m_now;
    QTimer m_timer;
    Thresholds m_thresholds;
    ClockRule m_clock;
    QDateTime m_lastHour; ///< Begin of the hour of the last hourly zurge; invalid: none yet.
};
