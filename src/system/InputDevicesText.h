// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QList>
#include <QString>

/// One block of "/proc/bus/input/devices". Plain value.
struct InputDeviceDescription
{
    enum class Kind
    {
        Keyboard, ///< Has the letter keys; power buttons and the like have not.
        Mouse,    ///< Moves the pointer and has a left button.
        Trackpad, ///< Reports where a finger lies, and is not the screen itself.
        Other,
    };

    Kind kind = Kind::Other;
    QString name;           ///< As the device reports it; may be empty.
    unsigned short bus = 0; ///< BUS_USB and the like, see linux/input.h.
    unsigned short vendor = 0;
    unsigned short product = 0;
};

/// The devices in the content of "/proc/bus/input/devices", in its order, however damaged it is: a
/// line that makes no sense counts as absent. Any thread.
QList<InputDeviceDescription> parseInputDevices(QByteArrayView text);
