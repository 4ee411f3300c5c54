// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What is known about the counting of keys; decides what the views tell beside their figures.
enum class InputState
{
    Reading,      ///< Devices are read and keys are counted.
    NoDevices,    ///< There is no input device at all.
    NoPermission, ///< There are devices, but this user may read none of them.
    Off,          ///< Keyboard statistics are switched off in the settings.
    Paused,       ///< The user paused counting.
    ReadOnly,     ///< The database cannot be written, so nothing is counted.
};
