// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/KeyMap.h"

#include <linux/input-event-codes.h>

#include <array>
#include <string_view>

namespace {

constexpr size_t KeyCodes = 256;

/// Keys side by side whose codes follow each other and whose value is the character on them.
struct CharacterRow
{
    quint16 firstCode;
    std::string_view characters;
};

constexpr std::array CharacterRows{
    CharacterRow{KEY_1, "1234567890-="}, CharacterRow{KEY_Q, "QWERTYUIOP[]"},
    CharacterRow{KEY_A, "ASDFGHJKL;'"},  CharacterRow{KEY_BACKSLASH, "\\ZXCVBNM,./"},
    CharacterRow{KEY_SPACE, " "},
};

/// Function keys whose codes follow each other.
struct FunctionRow
{
    quint16 firstCode;
    int firstKey;
    size_t keys;
};

constexpr std::array FunctionRows{
    FunctionRow{KEY_F1, Qt::Key_F1, 10},
    FunctionRow{KEY_F11, Qt::Key_F11, 2},
    FunctionRow{KEY_F13, Qt::Key_F13, 12},
};

struct SingleKey
{
    quint16 code;
    int key;
};

constexpr std::array SingleKeys{
    SingleKey{KEY_ESC, Qt::Key_Escape},
    SingleKey{KEY_BACKSPACE, Qt::Key_Backspace},
    SingleKey{KEY_TAB, Qt::Key_Tab},
    SingleKey{KEY_ENTER, Qt::Key_Enter},
    SingleKey{KEY_LEFTCTRL, Qt::Key_Control},
    SingleKey{KEY_RIGHTCTRL, Qt::Key_Control},
    SingleKey{KEY_LEFTSHIFT, Qt::Key_Shift},
    SingleKey{KEY_RIGHTSHIFT, Qt::Key_Shift},
    SingleKey{KEY_LEFTALT, Qt::Key_Alt},
    SingleKey{KEY_CAPSLOCK, Qt::Key_CapsLock},
    SingleKey{KEY_SCROLLLOCK, Qt::Key_ScrollLock},
    SingleKey{KEY_HOME, Qt::Key_Home},
    SingleKey{KEY_END, Qt::Key_End},
    SingleKey{KEY_PAGEUP, Qt::Key_PageUp},
    SingleKey{KEY_PAGEDOWN, Qt::Key_PageDown},
    SingleKey{KEY_LEFT, Qt::Key_Left},
    SingleKey{KEY_UP, Qt::Key_Up},
    SingleKey{KEY_RIGHT, Qt::Key_Right},
    SingleKey{KEY_DOWN, Qt::Key_Down},
    SingleKey{KEY_INSERT, Qt::Key_Insert},
    SingleKey{KEY_DELETE, Qt::Key_Delete},
    SingleKey{KEY_PAUSE, Qt::Key_Pause},
    SingleKey{KEY_MUTE, Qt::Key_VolumeMute},
    SingleKey{KEY_VOLUMEDOWN, Qt::Key_VolumeDown},
    SingleKey{KEY_VOLUMEUP, Qt::Key_VolumeUp},
    SingleKey{KEY_RIGHTALT, 0x01001256},
    SingleKey{KEY_KP0, 0x01001258},
    SingleKey{KEY_KP1, 0x01001260},
    SingleKey{KEY_KP2, 0x01001255},
    SingleKey{KEY_KP3, 0x01001252},
    SingleKey{KEY_KP4, 0x01001257},
    SingleKey{KEY_KP5, 0x01001254},
    SingleKey{KEY_KP6, 0x0100125f},
    SingleKey{KEY_KP7, 0x0100125e},
    SingleKey{KEY_KP8, 0x01001259},
    SingleKey{KEY_KP9, 0xa8},
    SingleKey{KEY_KPMINUS, 0xca},
    SingleKey{KEY_KPPLUS, 0x010000d4},
    SingleKey{KEY_KPASTERISK, 0x010000d5},
    SingleKey{KEY_KPSLASH, 0x01000102},
    SingleKey{KEY_KPDOT, 0x010000ff},
    SingleKey{KEY_NUMLOCK, 0x01000104},
};

constexpr std::array<Qt::Key, KeyCodes> makeTable()
{
    std::array<Qt::Key, KeyCodes> table{};
    table.fill(Qt::Key_unknown);
    for (const CharacterRow& row : CharacterRows) {
        for (size_t i = 0; i < row.characters.size(); ++i) {
            table.at(row.firstCode + i) = static_cast<Qt::Key>(row.characters.at(i));
        }
    }
    for (const FunctionRow& row : FunctionRows) {
        for (size_t i = 0; i < row.keys; ++i) {
            table.at(row.firstCode + i) = static_cast<Qt::Key>(row.firstKey + static_cast<int>(i));
        }
    }
    for (const SingleKey& single : SingleKeys) {
        table.at(single.code) = static_cast<Qt::Key>(single.key);
    }
    return table;
}

constexpr std::array<Qt::Key, KeyCodes> Table = makeTable();

} // namespace

Qt::Key KeyMap::translate(quint16 code)
{
    return code < Table.size() ? Table.at(code) : Qt::Key_unknown;
}
