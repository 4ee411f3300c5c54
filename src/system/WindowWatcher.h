// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/RepeatedWarning.h"
#include "system/DisplayConnection.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>
#include <optional>

class ProcessInfo;

/// Which application's window is in front, and whose windows exist, by the properties that window
/// managers keep (freedesktop.org's Extended Window Manager Hints). The display is open from
/// construction to destruction; one that is lost is tried again a few times, at growing intervals.
///
/// Each question takes a few round trips to the display, below a millisecond. Thread: main.
class WindowWatcher
{
public:
    /// `processes` is not owned and must outlive this object. A lost display is tried again after
    /// `firstReconnect`, then after twice that, and so on.
    explicit WindowWatcher(const ProcessInfo& processes,
                           std::chrono::milliseconds firstReconnect = std::chrono::seconds(5));
    ~WindowWatcher();

    /// The executable whose window is in front; empty without a display, for the desktop and
    /// panels, and when its process cannot be told.
    QString activeApplicationPath();

    /// The executables that own windows, each once, in the order of their first window. The desktop
    /// and panels are left out.
    QStringList applicationPaths();

    /// The window in front covers the whole screen, by its own state.
    bool isFullscreenWindowActive();

private:
    bool isConnected();
    void reconnectIfDue();
    /// The window in front, unless it is the desktop or a panel.
    std::optional<quint64> applicationWindowInFront();
    bool isDesktopOrDock(quint64 window);
    std::optional<qint64> processOf(quint64 window);

    const ProcessInfo& m_processes;
    std::unique_ptr<DisplayConnection> m_display;
    const bool m_wasOpen; ///< There was a display at the start, so it is worth another try.
    const std::chrono::milliseconds m_firstReconnect;
    RepeatedWarning m_noDisplay;
    RepeatedWarning m_noProcess;
    QElapsedTimer m_lastTry; ///< Of connecting again; not valid while connected.
    int m_reconnects = 0;
};
