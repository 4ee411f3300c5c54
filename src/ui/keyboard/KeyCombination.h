// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

class KeyboardLayout;

/// A key pressed with modifiers, as it is stored: "control,shift,67". Plain value.
struct KeyCombination
{
    bool hasControl = false;
    bool hasOption = false;
    bool hasShift = false;
    bool hasCommand = false;
    bool hasFn = false;
    int key = 0; ///< A stored key; see `KeyNames`.

    /// Nothing where `stored` is no combination.
    static std::optional<KeyCombination> parse(const QString& stored);

    /// "Ctrl+Shift+C", with the key as it is called on `layout`.
    QString text(const KeyboardLayout& layout) const;
};
