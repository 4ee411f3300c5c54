// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/InputState.h"

#include <QObject>

class AbstractSystem;
class Collector;
class Database;

/// Switches the statistics by the settings and the user's pause, and knows what is being counted.
/// Until the user resumes, no input is read at all. Thread: main.
class CountingSwitch : public QObject
{
    Q_OBJECT

public:
    /// The three outlive this object.
    CountingSwitch(Database& database, Collector& collector, AbstractSystem& system,
                   QObject* parent = nullptr);

    bool isPaused() const { return m_isPaused; }

    InputState inputState() const;

    /// Writes what is held, and switches each statistic on or off by the settings.
    void followSettings();

    /// Hold the writing of statistics, and go on with it unless the user has paused counting. What
    /// is counted meanwhile is kept.
    void hold();
    void release();

public Q_SLOTS:
    void pause();
    void resume();

    /// Stores the settings that switch the keyboard statistics on. `followSettings` is to follow.
    void storeKeyboardOn();

Q_SIGNALS:
    void pausedChanged();

private:
    Database& m_database;
    Collector& m_collector;
    AbstractSystem& m_system;
    bool m_isPaused = false;
};
