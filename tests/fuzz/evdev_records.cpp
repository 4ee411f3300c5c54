// SPDX-License-Identifier: GPL-3.0-or-later
// Records of an input device, with any type, code, value and time, after the device's two scales.
#include "system/EvdevDecoder.h"
#include "system/KeyMap.h"

#include <linux/input.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>

namespace {

template <typename Value>
bool take(std::span<const std::uint8_t>& bytes, Value& value)
{
    if (bytes.size() < sizeof(Value)) {
        return false;
    }
    std::memcpy(&value, bytes.data(), sizeof(Value));
    bytes = bytes.subspan(sizeof(Value));
    return true;
}

/// What every action promises to those who count it.
bool isSound(const InputAction& action)
{
    constexpr int otherButton = 99;
    switch (action.kind) {
    case InputAction::Kind::KeyDown:
    case InputAction::Kind::KeyUp:
        return action.code <= UINT8_MAX && KeyMap::translate(action.code) != 0;
    case InputAction::Kind::ButtonDown:
    case InputAction::Kind::ButtonUp:
    case InputAction::Kind::ButtonHeld:
        return (action.amount >= 0 && action.amount <= 2) || action.amount == otherButton;
    default:
        return action.amount >= 0;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::span<const std::uint8_t> bytes(data, size);
    AxisScales scales;
    if (!take(bytes, scales.x) || !take(bytes, scales.y)) {
        return 0;
    }
    constexpr qint64 start = 1'700'000'000;
    EvdevDecoder decoder(start, scales, true);
    input_event record = {};
    while (take(bytes, record)) {
        if (!isSound(decoder.decode(record))) {
            std::abort();
        }
    }
    return 0;
}
