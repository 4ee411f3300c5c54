// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/KeyNames.h"

#include <QCoreApplication>
#include <QKeySequence>

#include <array>

namespace {

struct NamedKey
{
    int key;
    const char* name;
};

/// Keys whose stored value has another name in Qt, or whose Qt name says too little.
constexpr std::array NamedKeys{
    NamedKey{Qt::Key_unknown, QT_TRANSLATE_NOOP("KeyNames", "Unknown key")},
    NamedKey{Qt::Key_Enter, QT_TRANSLATE_NOOP("KeyNames", "Enter")},
    NamedKey{Qt::Key_Control, QT_TRANSLATE_NOOP("KeyNames", "Ctrl")},
    NamedKey{Qt::Key_Shift, QT_TRANSLATE_NOOP("KeyNames", "Shift")},
    NamedKey{Qt::Key_Alt, QT_TRANSLATE_NOOP("KeyNames", "Alt")},
    NamedKey{Qt::Key_CapsLock, QT_TRANSLATE_NOOP("KeyNames", "Caps Lock")},
    NamedKey{Qt::Key_Escape, QT_TRANSLATE_NOOP("KeyNames", "Esc")},
    NamedKey{Qt::Key_PageUp, QT_TRANSLATE_NOOP("KeyNames", "Page Up")},
    NamedKey{Qt::Key_PageDown, QT_TRANSLATE_NOOP("KeyNames", "Page Down")},
    NamedKey{0x01001256, QT_TRANSLATE_NOOP("KeyNames", "Right Alt")},
    NamedKey{0x01001258, QT_TRANSLATE_NOOP("KeyNames", "Keypad 0")},
    NamedKey{0x01001260, QT_TRANSLATE_NOOP("KeyNames", "Keypad 1")},
    NamedKey{0x01001255, QT_TRANSLATE_NOOP("KeyNames", "Keypad 2")},
    NamedKey{0x01001252, QT_TRANSLATE_NOOP("KeyNames", "Keypad 3")},
    NamedKey{0x01001257, QT_TRANSLATE_NOOP("KeyNames", "Keypad 4")},
    NamedKey{0x01001254, QT_TRANSLATE_NOOP("KeyNames", "Keypad 5")},
    NamedKey{0x0100125f, QT_TRANSLATE_NOOP("KeyNames", "Keypad 6")},
    NamedKey{0x0100125e, QT_TRANSLATE_NOOP("KeyNames", "Keypad 7")},
    NamedKey{0x01001259, QT_TRANSLATE_NOOP("KeyNames", "Keypad 8")},
    NamedKey{0xa8, QT_TRANSLATE_NOOP("KeyNames", "Keypad 9")},
    NamedKey{0xca, QT_TRANSLATE_NOOP("KeyNames", "Keypad -")},
    NamedKey{0x010000d4, QT_TRANSLATE_NOOP("KeyNames", "Keypad +")},
    NamedKey{0x010000d5, QT_TRANSLATE_NOOP("KeyNames", "Keypad *")},
    NamedKey{0x01000102, QT_TRANSLATE_NOOP("KeyNames", "Keypad /")},
    NamedKey{0x010000ff, QT_TRANSLATE_NOOP("KeyNames", "Keypad .")},
    NamedKey{0x01000104, QT_TRANSLATE_NOOP("KeyNames", "Num Lock")},
};

} // namespace

QString KeyNames::text(int key)
{
    for (const NamedKey& named : NamedKeys) {
        if (named.key == key) {
            return QCoreApplication::translate("KeyNames", named.name);
        }
    }
    return QKeySequence(key).toString(QKeySequence::NativeText);
}
