// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

struct input_event;

/// What one record of a device means for the counts. Plain value.
struct InputAction
{
    enum class Kind
    {
        None,           ///< Nothing that is counted.
        KeyDown,        ///< `code` is the kernel's key code.
        KeyUp,          ///< Likewise.
        FakeLeftPress,  ///< A press of cursor left that no one made; not counted.
        FakeRightPress, ///< Likewise, of cursor right.
        ButtonDown,     ///< `code` is the kernel's code, `amount` the button index.
        ButtonUp,       ///< Likewise.
        ButtonHeld,     ///< Likewise, for a value that is neither press nor release; not counted.
        ScrollUp,       ///< One step, whatever the size the device reports.
        ScrollDown,     ///< Likewise.
        ScrollLeft,     ///< Likewise.
        ScrollRight,    ///< Likewise.
        Travel,         ///< `amount` pixels, 0 or more.
        EventsLost,     ///< The kernel's queue was full; what was in it is gone.
    };

    Kind kind = Kind::None;
    quint16 code = 0;
    int amount = 0;

    friend bool operator==(const InputAction&, const InputAction&) = default;
};

/// Device units per pixel of the primary screen; 1 for a device without absolute axes. Plain value.
struct AxisScales
{
    double x = 1.0;
    double y = 1.0;
};

/// Turns the records of one input device into actions, and holds what that takes from one record to
/// the next. Knows no file and no thread; any type, code and value give a defined answer: a result
/// beyond the range of `int` stays at its end, and one that is no number counts as 0.
///
/// Thread: one at a time. Never allocates.
class EvdevDecoder final
{
public:
    /// `startSeconds`: the wall clock at the start, which stands for the last press of each cursor
    /// key until there is one.
    EvdevDecoder(qint64 startSeconds, AxisScales scales, bool listenMouse);

    InputAction decode(const input_event& record);

    /// The time that a record carries, in unsigned arithmetic, which is defined for whatever time a
    /// device claims.
    static quint64 microseconds(const input_event& record);

private:
    /// Some keyboards report presses of cursor left and right that no one made, each this close to
    /// the one before. The state of one such key:
    struct CursorKey
    {
        quint64 lastPress = 0;    ///< Its record's time, in microseconds.
        bool fakePending = false; ///< The last press was left out, so its release must be, too.
    };

    InputAction decodeKey(const input_event& record);
    InputAction decodeButton(const input_event& record) const;
    InputAction decodePress(const input_event& record);
    InputAction decodeRelease(const input_event& record) const;
    InputAction decodeRelative(const input_event& record);
    InputAction decodeAbsolute(const input_event& record);

    static InputAction travel(int& previous, int position);
    static bool isFakePress(CursorKey& key, quint64 time);

    AxisScales m_scales;
    bool m_listenMouse;
    CursorKey m_left;
    CursorKey m_right;
    int m_previousX = 0;
    int m_previousY = 0;
};
