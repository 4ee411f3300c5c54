// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/DisplayConnection.h"

#include "base/Log.h"
#include "system/WindowProperty.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <algorithm>
#include <cstddef>
#include <memory>

namespace {

unsigned long xType(DisplayConnection::PropertyType type)
{
    switch (type) {
    case DisplayConnection::PropertyType::Window:
        return XA_WINDOW;
    case DisplayConnection::PropertyType::Atom:
        return XA_ATOM;
    case DisplayConnection::PropertyType::Cardinal:
        break;
    }
    return XA_CARDINAL;
}

} // namespace

/// Holds Xlib's two process-wide error handlers while one connection makes a request, and gives
/// them back afterwards.
class DisplayErrorTrap
{
public:
    explicit DisplayErrorTrap(Display* display)
        : m_outerDisplay(s_display)
        , m_outerError(s_nextError)
        , m_outerIoError(s_nextIoError)
    {
        s_display = display;
        s_nextError = XSetErrorHandler(onError);
        s_nextIoError = XSetIOErrorHandler(onIoError);
    }

    DisplayErrorTrap(const DisplayErrorTrap&) = delete;
    DisplayErrorTrap& operator=(const DisplayErrorTrap&) = delete;

    ~DisplayErrorTrap()
    {
        XSetErrorHandler(s_nextError);
        XSetIOErrorHandler(s_nextIoError);
        s_display = m_outerDisplay;
        s_nextError = m_outerError;
        s_nextIoError = m_outerIoError;
    }

    /// Called by Xlib after `onIoError`, in place of ending the process (libX11 1.7 and later).
    static void onLost(Display*, void* connection)
    {
        static_cast<DisplayConnection*>(connection)->m_lost = true;
    }

private:
    static int onError(Display* display, XErrorEvent* event)
    {
        // Windows vanish between two calls; what was asked of one then comes back empty.
        return display == s_display ? 0 : s_nextError(display, event);
    }

    static int onIoError(Display* display)
    {
        return display == s_display ? 0 : s_nextIoError(display);
    }

    static inline Display* s_display = nullptr;
    static inline XErrorHandler s_nextError = nullptr;
    static inline XIOErrorHandler s_nextIoError = nullptr;

    Display* m_outerDisplay;
    XErrorHandler m_outerError;
    XIOErrorHandler m_outerIoError;
};

DisplayConnection::DisplayConnection()
    : m_display(XOpenDisplay(nullptr))
{
    if (m_display) {
        XSetIOErrorExitHandler(m_display, DisplayErrorTrap::onLost, this);
        internAtoms();
    }
}

DisplayConnection::~DisplayConnection()
{
    if (m_display) {
        const DisplayErrorTrap trap(m_display);
        XCloseDisplay(m_display);
    }
}

bool DisplayConnection::isOpen() const
{
    return m_display && !m_lost;
}

quint64 DisplayConnection::rootWindow() const
{
    return isOpen() ? DefaultRootWindow(m_display) : 0;
}

quint64 DisplayConnection::atom(Atom name) const
{
    return m_atoms.at(static_cast<size_t>(name));
}

std::vector<quint32> DisplayConnection::values(quint64 window, Atom property, PropertyType type)
{
    constexpr long mostValues = 4096;
    if (!isOpen()) {
        return {};
    }
    const DisplayErrorTrap trap(m_display);
    ::Atom actualType = None;
    unsigned char* data = nullptr;
    unsigned long count = 0;
    unsigned long left = 0;
    WindowProperty found;
    const ::Atom expected = xType(type);
    const int status =
        XGetWindowProperty(m_display, window, atom(property), 0, mostValues, False, expected,
                           &actualType, &found.format, &count, &left, &data);
    const std::unique_ptr<unsigned char, int (*)(unsigned char*)> owner(
        data, [](unsigned char* bytes) { return XFree(bytes); });
    discardEvents();
    if (status != Success || !data) {
        return {};
    }
    found.type = actualType;
    found.count = count;
    // Of what Xlib allocates, only format 32 is read, and that as `long`.
    found.data = {reinterpret_cast<const std::byte*>(data),
                  found.format == 32 ? count * sizeof(long) : 0};
    return propertyValues(found, expected);
}

void DisplayConnection::internAtoms()
{
    std::array<const char*, static_cast<size_t>(Atom::Count)> names{"_NET_ACTIVE_WINDOW",
                                                                    "_NET_CLIENT_LIST",
                                                                    "_NET_WM_WINDOW_TYPE",
                                                                    "_NET_WM_WINDOW_TYPE_DESKTOP",
                                                                    "_NET_WM_WINDOW_TYPE_DOCK",
                                                                    "_NET_WM_PID",
                                                                    "_NET_WM_STATE",
                                                                    "_NET_WM_STATE_FULLSCREEN"};
    std::array<::Atom, static_cast<size_t>(Atom::Count)> atoms{};
    const DisplayErrorTrap trap(m_display);
    // Xlib declares the names as changeable, and does not change them.
    XInternAtoms(m_display, const_cast<char**>(names.data()), static_cast<int>(names.size()), False,
                 atoms.data());
    std::copy(atoms.begin(), atoms.end(), m_atoms.begin());
}

void DisplayConnection::discardEvents()
{
    // Nothing was asked for, but every client is sent the changes of the keyboard map, which would
    // gather in Xlib's queue for as long as the session lasts.
    while (isOpen() && XEventsQueued(m_display, QueuedAlready) > 0) {
        XEvent event;
        XNextEvent(m_display, &event);
    }
}
