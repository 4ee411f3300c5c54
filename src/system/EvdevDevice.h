// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/FileDescriptor.h"

#include <QString>

#include <optional>

/// What is asked of the kernel about one input device (linux/input.h). Any thread.
namespace EvdevDevice {

/// The extent of the two position axes in device units, maximum minus minimum. Plain value.
struct AxisRanges
{
    int x = 0;
    int y = 0;
};

/// Opens the node to read from it, in up to three attempts; reading then blocks, opening never
/// does. On failure holds no descriptor, and `errno` says why.
FileDescriptor open(const QString& path);

/// Tells the kernel which events are counted, so that it wakes no one for others. Where the node
/// knows no such request (a kernel before 4.4, a pipe), everything arrives and the decoder drops
/// it.
void wantCountedEventsOnly(int descriptor);

/// The ranges of a device that reports positions; nothing for one that does not.
std::optional<AxisRanges> absoluteAxisRanges(int descriptor);

} // namespace EvdevDevice
