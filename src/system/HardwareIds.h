// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QString>

/// Names of hardware in the texts that describe it. Free functions over those texts. Any thread.
namespace HardwareIds {

struct Names
{
    QString vendor; ///< Empty when the list does not know it.
    QString device; ///< Likewise.
};

/// Looks up a device in the content of "pci.ids" or "usb.ids": a vendor's line begins with its four
/// hexadecimal digits, its devices follow indented by one tab, their subsystems by two.
Names find(QByteArrayView ids, unsigned short vendor, unsigned short device);

/// A number such as "0x8086", as files in "/sys" hold it; 0 where it is none.
unsigned int hexNumber(QByteArrayView text);

/// A file of "/sys/class/dmi/id" or of the device tree as one line; empty for the filler that
/// makers leave behind, such as "To Be Filled By O.E.M.".
QString modelText(QByteArrayView text);

} // namespace HardwareIds
