// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Names of the keys as they are stored: `Qt::Key` values, and for the keypad and the right Alt key
/// values that Qt uses for nothing a keyboard sends, so that they stay apart from the main block.
namespace KeyNames {

/// The name to show for a stored key, such as "A", "Space", "Keypad 7", "Right Alt"; "Unknown key"
/// for `Qt::Key_unknown`. Any thread.
QString text(int key);

} // namespace KeyNames
