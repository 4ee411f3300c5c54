// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <array>
#include <vector>

struct _XDisplay; // NOLINT(bugprone-reserved-identifier): Xlib's own name for a display.

/// One connection to the X display, made to outlive what happens to it: a window that vanished
/// gives an empty answer, and a display that goes away makes `isOpen` false instead of ending the
/// process.
///
/// Xlib's error handlers belong to the whole process, and Qt's platform plugin has its own: ours
/// are in place only during a request, and hand on what concerns another connection. Thread: main.
class DisplayConnection
{
public:
    enum class Atom
    {
        ActiveWindow,
        ClientList,
        WindowType,
        WindowTypeDesktop,
        WindowTypeDock,
        ProcessId,
        State,
        StateFullscreen,
        Count,
    };

    enum class PropertyType
    {
        Window,
        Atom,
        Cardinal,
    };

    /// Opens the display named by `DISPLAY`.
    DisplayConnection();
    DisplayConnection(const DisplayConnection&) = delete;
    DisplayConnection& operator=(const DisplayConnection&) = delete;
    ~DisplayConnection();

    /// False when it could not be opened, or was lost since.
    bool isOpen() const;

    /// The root window of the default screen.
    quint64 rootWindow() const;

    /// The X atom of one of the names above, interned when the display was opened.
    quint64 atom(Atom name) const;

    /// The values of a window's property of format 32; empty when it is missing, of another type,
    /// or when the window is gone.
    std::vector<quint32> values(quint64 window, Atom property, PropertyType type);

private:
    friend class DisplayErrorTrap;

    void internAtoms();
    void discardEvents();

    _XDisplay* m_display = nullptr; ///< Owned; closed by the destructor.
    bool m_lost = false;
    std::array<quint64, static_cast<size_t>(Atom::Count)> m_atoms{};
};
