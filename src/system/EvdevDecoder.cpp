// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/EvdevDecoder.h"

#include <linux/input.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using Kind = InputAction::Kind;

constexpr int Released = 0;
constexpr int Pressed = 1;
constexpr quint16 LastKeyCode = 255;

constexpr quint64 MicrosecondsPerSecond = 1'000'000;
constexpr quint64 ShortestFakeDistance = 90'001;
constexpr quint64 LongestFakeDistance = 114'999;

int saturated(double value)
{
    if (std::isnan(value)) {
        return 0;
    }
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, lowest, highest));
}

/// What a value of a device is on the screen, in whole pixels towards zero.
int pixels(int value, double scale)
{
    // A screen or an axis without extent makes the scale zero, infinite or no number at all.
    return scale == 0.0 ? 0 : saturated(value / scale);
}

int buttonIndex(quint16 code)
{
    constexpr int other = 99;
    switch (code) {
    case BTN_LEFT:
        return 0;
    case BTN_RIGHT:
        return 1;
    case BTN_MIDDLE:
        return 2;
    default:
        return other;
    }
}

InputAction scroll(int value, Kind positive, Kind negative)
{
    if (value == 0) {
        return {};
    }
    return {.kind = value > 0 ? positive : negative};
}

} // namespace

EvdevDecoder::EvdevDecoder(qint64 startSeconds, AxisScales scales, bool listenMouse)
    : m_scales(scales)
    , m_listenMouse(listenMouse)
{
    m_left.lastPress = static_cast<quint64>(startSeconds) * MicrosecondsPerSecond;
    m_right.lastPress = m_left.lastPress;
}

quint64 EvdevDecoder::microseconds(const input_event& record)
{
    return static_cast<quint64>(record.input_event_sec) * MicrosecondsPerSecond +
           static_cast<quint64>(record.input_event_usec);
}

InputAction EvdevDecoder::decode(const input_event& record)
{
    switch (record.type) {
    case EV_KEY:
        return decodeKey(record);
    case EV_REL:
        return decodeRelative(record);
    case EV_ABS:
        return decodeAbsolute(record);
    case EV_SYN:
        return {.kind = record.code == SYN_DROPPED ? Kind::EventsLost : Kind::None};
    default:
        return {};
    }
}

InputAction EvdevDecoder::decodeKey(const input_event& record)
{
    if (record.code >= BTN_LEFT && record.code <= BTN_TASK) {
        return decodeButton(record);
    }
    if (record.code > LastKeyCode) {
        return {};
    }
    switch (record.value) {
    case Released:
        return decodeRelease(record);
    case Pressed:
        return decodePress(record);
    default: // A held key repeats; it counts once, when released.
        return {};
    }
}

InputAction EvdevDecoder::decodeButton(const input_event& record) const
{
    if (!m_listenMouse) {
        return {};
    }
    const int index = buttonIndex(record.code);
    switch (record.value) {
    case Released:
        return {.kind = Kind::ButtonUp, .code = record.code, .amount = index};
    case Pressed:
        return {.kind = Kind::ButtonDown, .code = record.code, .amount = index};
    default:
        return {.kind = Kind::ButtonHeld, .code = record.code, .amount = index};
    }
}

InputAction EvdevDecoder::decodePress(const input_event& record)
{
    if (record.code == KEY_LEFT && isFakePress(m_left, microseconds(record))) {
        return {.kind = Kind::FakeLeftPress, .code = record.code};
    }
    if (record.code == KEY_RIGHT && isFakePress(m_right, microseconds(record))) {
        return {.kind = Kind::FakeRightPress, .code = record.code};
    }
    return {.kind = Kind::KeyDown, .code = record.code};
}

InputAction EvdevDecoder::decodeRelease(const input_event& record) const
{
    if ((record.code == KEY_LEFT && m_left.fakePending) ||
        (record.code == KEY_RIGHT && m_right.fakePending)) {
        return {};
    }
    return {.kind = Kind::KeyUp, .code = record.code};
}

InputAction EvdevDecoder::decodeRelative(const input_event& record)
{
    switch (record.code) {
    case REL_WHEEL:
        return scroll(record.value, Kind::ScrollUp, Kind::ScrollDown);
    case REL_HWHEEL: // The stored directions take a positive step for one to the left.
        return scroll(record.value, Kind::ScrollLeft, Kind::ScrollRight);
    case REL_X:
        return travel(m_previousX, record.value);
    case REL_Y:
        return travel(m_previousY, pixels(record.value, m_scales.y));
    default:
        return {};
    }
}

InputAction EvdevDecoder::decodeAbsolute(const input_event& record)
{
    switch (record.code) {
    case ABS_X:
        return travel(m_previousX, pixels(record.value, m_scales.x));
    case ABS_Y:
        return travel(m_previousY, pixels(record.value, m_scales.y));
    default:
        return {};
    }
}

/// Travel is the difference between two reports that follow each other, for a device that reports
/// motion as well as for one that reports positions. A report of 0 leaves nothing to compare with.
InputAction EvdevDecoder::travel(int& previous, int position)
{
    const qint64 before = previous;
    previous = position;
    if (before == 0) {
        return {};
    }
    const qint64 distance = std::abs(before - position);
    constexpr qint64 most = std::numeric_limits<int>::max();
    return {.kind = Kind::Travel, .amount = static_cast<int>(std::min(distance, most))};
}

bool EvdevDecoder::isFakePress(CursorKey& key, quint64 time)
{
    // Unsigned: a press before the last one is far away, not close.
    const quint64 distance = time - key.lastPress;
    key.lastPress = time;
    key.fakePending = distance >= ShortestFakeDistance && distance <= LongestFakeDistance;
    return key.fakePending;
}
