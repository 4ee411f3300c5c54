// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/Random.h"

#include <QString>

#include <vector>

/// What is typed into an application.
enum class Typing
{
    Prose,
    Code,
    Commands, ///< A terminal.
    Numbers,  ///< Spreadsheets: digits, mostly on the keypad.
    Game,
    Browsing,
};

struct PressedKey
{
    int key = 0; ///< As stored: a `Qt::Key` value, or the client's own for keypad and right Alt.
    int count = 0;
};

struct ComboCount
{
    QString combo; ///< As stored: "control,67", "control,shift,84".
    int count = 0;
};

/// How keystrokes spread over the keyboard.
class KeyMix
{
public:
    explicit KeyMix(Typing typing);

    /// About `keystrokes` of them, by key; keys that were not pressed are left out.
    std::vector<PressedKey> keys(Random& random, double keystrokes) const;

    /// The key combinations among as many keystrokes; those that were not pressed are left out.
    std::vector<ComboCount> combos(Random& random, double keystrokes) const;

private:
    struct WeightedKey
    {
        int key = 0;
        double weight = 0; ///< The weights of a mix add up to 1.
    };

    struct WeightedCombo
    {
        QString combo;
        double weight = 0; ///< Presses for each keystroke.
    };

    void add(int key, double weight);
    void addLetters(double share);
    void addDigits(double share);
    void addNavigation(double share);
    void addKeypad(double share);
    void addRareKeys(double share);
    void addEditing(double share);
    void addPunctuation(double share);
    void addCombo(const QString& modifiers, const char* keys, double weight);
    void addCombos(Typing typing);

    std::vector<WeightedKey> m_keys;
    std::vector<WeightedCombo> m_combos;
};
