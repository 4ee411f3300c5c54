// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QObject>
#include <QTimer>

class LocalStats;

/// Starts zurges without the user: at a count, at an hour of the day, or every hour. Thread: main.
class AutoZurging : public QObject
{
    Q_OBJECT

public:
    explicit AutoZurging(LocalStats& localStats, QObject* parent = nullptr);

    void start();           ///< Checks every minute from now on.
    void refreshSettings(); ///< Reads the thresholds and the hour anew.

public Q_SLOTS:
    void checkForZurge(); ///< Starts at most one zurge.
};
