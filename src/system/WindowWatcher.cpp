// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/WindowWatcher.h"

#include "base/Log.h"
#include "system/ProcessInfo.h"

#include <QSet>

#include <algorithm>

namespace {

using namespace std::chrono_literals;

/// A session without X asks in vain every few seconds, for as long as it lasts.
constexpr std::chrono::milliseconds WarnAgainAfter = 1h;
constexpr int MostReconnects = 8; ///< With a first pause of 5 s, 21 minutes in all.

using Atom = DisplayConnection::Atom;
using PropertyType = DisplayConnection::PropertyType;

} // namespace

WindowWatcher::WindowWatcher(const ProcessInfo& processes, std::chrono::milliseconds firstReconnect)
    : m_processes(processes)
    , m_display(std::make_unique<DisplayConnection>())
    , m_wasOpen(m_display->isOpen())
    , m_firstReconnect(firstReconnect)
    , m_noDisplay(WarnAgainAfter)
    , m_noProcess(WarnAgainAfter)
{
}

WindowWatcher::~WindowWatcher() = default;

QString WindowWatcher::activeApplicationPath()
{
    if (!isConnected()) {
        if (m_noDisplay.isDue()) {
            Log::warn("XOpenDisplay failed!");
        }
        return {};
    }
    const std::optional<quint64> window = applicationWindowInFront();
    if (!window) {
        return {};
    }
    const std::optional<qint64> process = processOf(*window);
    if (!process) {
        if (m_noProcess.isDue()) {
            Log::warn("XGetWindowProperty _NET_WM_PID failed on window {:#x}", *window);
        }
        return {};
    }
    return m_processes.processPath(*process);
}

QStringList WindowWatcher::applicationPaths()
{
    QStringList paths;
    if (!isConnected()) {
        return paths;
    }
    QSet<qint64> seen;
    for (const quint32 window :
         m_display->values(m_display->rootWindow(), Atom::ClientList, PropertyType::Window)) {
        const std::optional<qint64> process = processOf(window);
        if (!process || seen.contains(*process) || isDesktopOrDock(window)) {
            continue;
        }
        seen.insert(*process);
        const QString path = m_processes.processPath(*process);
        if (!path.isEmpty() && !paths.contains(path)) {
            paths.append(path);
        }
    }
    return paths;
}

bool WindowWatcher::isFullscreenWindowActive()
{
    if (!isConnected()) {
        return false;
    }
    const std::optional<quint64> window = applicationWindowInFront();
    if (!window) {
        return false;
    }
    const auto states = m_display->values(*window, Atom::State, PropertyType::Atom);
    return std::find(states.begin(), states.end(), m_display->atom(Atom::StateFullscreen)) !=
           states.end();
}

bool WindowWatcher::isConnected()
{
    if (!m_display->isOpen() && m_wasOpen) {
        reconnectIfDue();
    }
    return m_display->isOpen();
}

void WindowWatcher::reconnectIfDue()
{
    if (!m_lastTry.isValid()) {
        Log::warn("The connection to the X display was lost");
        m_lastTry.start();
        return;
    }
    const auto pause = m_firstReconnect * (1 << m_reconnects);
    if (m_reconnects == MostReconnects || !m_lastTry.hasExpired(pause.count())) {
        return;
    }
    m_display = std::make_unique<DisplayConnection>();
    if (m_display->isOpen()) {
        Log::info("The X display is connected again");
        m_lastTry.invalidate();
        m_reconnects = 0;
        return;
    }
    ++m_reconnects;
    m_lastTry.start();
}

std::optional<quint64> WindowWatcher::applicationWindowInFront()
{
    const auto windows =
        m_display->values(m_display->rootWindow(), Atom::ActiveWindow, PropertyType::Window);
    const quint64 window = windows.empty() ? 0 : windows.front();
    return window == 0 || isDesktopOrDock(window) ? std::nullopt : std::optional(window);
}

bool WindowWatcher::isDesktopOrDock(quint64 window)
{
    // A window may name several types, its own desktop's before the standard ones.
    const auto types = m_display->values(window, Atom::WindowType, PropertyType::Atom);
    return std::any_of(types.begin(), types.end(), [this](quint32 type) {
        return type == m_display->atom(Atom::WindowTypeDesktop) ||
               type == m_display->atom(Atom::WindowTypeDock);
    });
}

std::optional<qint64> WindowWatcher::processOf(quint64 window)
{
    const auto ids = m_display->values(window, Atom::ProcessId, PropertyType::Cardinal);
    return ids.empty() || ids.front() == 0 ? std::nullopt : std::optional<qint64>(ids.front());
}
