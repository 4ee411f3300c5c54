// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/keyboard/KeyCombination.h"

#include "ui/keyboard/KeyboardLayout.h"

#include <QCoreApplication>
#include <QStringList>

#include <array>

namespace {

struct Modifier
{
    const char* stored;
    const char* text;
    bool KeyCombination::*flag;
};

constexpr std::array Modifiers{
    Modifier{"control", QT_TRANSLATE_NOOP("KeyCombination", "Ctrl"), &KeyCombination::hasControl},
    Modifier{"option", QT_TRANSLATE_NOOP("KeyCombination", "Alt"), &KeyCombination::hasOption},
    Modifier{"shift", QT_TRANSLATE_NOOP("KeyCombination", "Shift"), &KeyCombination::hasShift},
    Modifier{"command", QT_TRANSLATE_NOOP("KeyCombination", "Meta"), &KeyCombination::hasCommand},
    Modifier{"fn", QT_TRANSLATE_NOOP("KeyCombination", "Fn"), &KeyCombination::hasFn},
};

} // namespace

std::optional<KeyCombination> KeyCombination::parse(const QString& stored)
{
    QStringList words = stored.split(QLatin1Char(','));
    KeyCombination combination;
    bool isNumber = false;
    combination.key = words.takeLast().toInt(&isNumber);
    if (!isNumber) {
        return std::nullopt;
    }
    for (const QString& word : words) {
        const auto* modifier =
            std::find_if(Modifiers.begin(), Modifiers.end(), [&word](const Modifier& candidate) {
                return word == QLatin1String(candidate.stored);
            });
        if (modifier == Modifiers.end()) {
            return std::nullopt;
        }
        combination.*(modifier->flag) = true;
    }
    return combination;
}

QString KeyCombination::text(const KeyboardLayout& layout) const
{
    QString text;
    for (const Modifier& modifier : Modifiers) {
        if (this->*(modifier.flag)) {
            text += QCoreApplication::translate("KeyCombination", modifier.text) + QLatin1Char('+');
        }
    }
    return text + layout.keyName(key);
}
