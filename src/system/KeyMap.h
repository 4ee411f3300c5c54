// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/qnamespace.h>
#include <QtGlobal>

/// From the kernel's key codes (linux/input-event-codes.h) to the key values that are stored.
namespace KeyMap {

/// The value under which the key with this code is counted; `Qt::Key_unknown` for a code without
/// one.
///
/// Keys of the keypad and the right Alt key, for which Qt has no values of their own, get values
/// that Qt uses for nothing a keyboard sends, so that they are counted apart from the main block;
/// `KeyNames` knows their names. Any thread, never allocates.
Qt::Key translate(quint16 code);

} // namespace KeyMap
