// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>

#include <chrono>

/// Keeps one kind of warning, which may be due every second, from filling the log.
class RepeatedWarning
{
public:
    explicit RepeatedWarning(std::chrono::milliseconds pause)
        : m_pause(pause)
    {
    }

    /// True at the first call and then again once the pause has passed since the last true.
    bool isDue()
    {
        if (m_last.isValid() && !m_last.hasExpired(m_pause.count())) {
            return false;
        }
        m_last.start();
        return true;
    }

private:
    std::chrono::milliseconds m_pause;
    QElapsedTimer m_last;
};
