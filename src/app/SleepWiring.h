// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class AbstractSystem;
class Collector;
class PowerMonitor;
class ProfileWiring;

/// Tells those who count when the machine goes to sleep and wakes up. Thread: main.
class SleepWiring : public QObject
{
    Q_OBJECT

public:
    /// All of these outlive this object.
    struct Parts
    {
        const PowerMonitor& power;
        Collector& collector;
        AbstractSystem& system;
        ProfileWiring& profiles;
    };

    explicit SleepWiring(const Parts& parts, QObject* parent = nullptr);

private:
    void suspend();

    Parts m_parts;
};
