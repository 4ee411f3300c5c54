// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/KeyMix.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr int RightAlt = 0x01001256;

/// How often each letter is used in English text, in per cent, A to Z; see for example
/// https://en.wikipedia.org/wiki/Letter_frequency.
constexpr std::array LetterPercent{8.2,  1.5, 2.8, 4.3, 12.7, 2.2, 2.0, 6.1, 7.0,
                                   0.15, 0.8, 4.0, 2.4, 6.7,  7.5, 1.9, 0.1, 6.0,
                                   6.3,  9.1, 2.8, 1.0, 2.4,  0.2, 2.0, 0.1};

} // namespace

KeyMix::KeyMix(Typing typing)
{
    switch (typing) {
    case Typing::Prose:
        addLetters(0.7);
        add(Qt::Key_Space, 0.145);
        addEditing(0.11);
        addPunctuation(0.025);
        addNavigation(0.012);
        addDigits(0.006);
        add(RightAlt, 0.001);
        break;
    case Typing::Code:
        addLetters(0.52);
        add(Qt::Key_Space, 0.09);
        addEditing(0.17);
        addPunctuation(0.09);
        addNavigation(0.09);
        addDigits(0.033);
        add(RightAlt, 0.004);
        break;
    case Typing::Commands:
        addLetters(0.5);
        add(Qt::Key_Space, 0.08);
        addEditing(0.22);
        addPunctuation(0.08);
        addNavigation(0.09);
        addDigits(0.03);
        break;
    case Typing::Numbers:
        addLetters(0.22);
        addEditing(0.22);
        addKeypad(0.34);
        addDigits(0.1);
        addNavigation(0.12);
        break;
    case Typing::Game:
        for (const char key : std::string_view("WWWWWAAASSSDDDDEERQF123 ")) {
            add(key, 0.035);
        }
        add(Qt::Key_Shift, 0.07);
        add(Qt::Key_Control, 0.04);
        add(Qt::Key_Tab, 0.03);
        add(Qt::Key_Escape, 0.02);
        break;
    case Typing::Browsing:
        addLetters(0.55);
        add(Qt::Key_Space, 0.09);
        addEditing(0.17);
        addNavigation(0.13);
        addPunctuation(0.03);
        addDigits(0.028);
        break;
    }
    addRareKeys(0.002);
    addCombos(typing);
}

std::vector<PressedKey> KeyMix::keys(Random& random, double keystrokes) const
{
    std::vector<PressedKey> counts;
    for (const WeightedKey& key : m_keys) {
        if (const int count = random.whole(random.vary(keystrokes * key.weight, 0.5)); count > 0) {
            counts.push_back({key.key, count});
        }
    }
    return counts;
}

std::vector<ComboCount> KeyMix::combos(Random& random, double keystrokes) const
{
    std::vector<ComboCount> counts;
    for (const WeightedCombo& combo : m_combos) {
        if (const int count = random.whole(keystrokes * combo.weight); count > 0) {
            counts.push_back({combo.combo, count});
        }
    }
    return counts;
}

/// Adds to a key that the mix has already.
void KeyMix::add(int key, double weight)
{
    const auto found = std::ranges::find(m_keys, key, &WeightedKey::key);
    if (found == m_keys.end()) {
        m_keys.push_back({key, weight});
    } else {
        found->weight += weight;
    }
}

void KeyMix::addLetters(double share)
{
    int letter = Qt::Key_A;
    for (const double percent : LetterPercent) {
        add(letter++, share * percent / 100);
    }
}

void KeyMix::addDigits(double share)
{
    for (int digit = Qt::Key_0; digit <= Qt::Key_9; ++digit) {
        add(digit, share / 10);
    }
}

void KeyMix::addEditing(double share)
{
    add(Qt::Key_Backspace, share * 0.38);
    add(Qt::Key_Shift, share * 0.24);
    add(Qt::Key_Control, share * 0.17);
    add(Qt::Key_Enter, share * 0.13);
    add(Qt::Key_Tab, share * 0.05);
    add(Qt::Key_Alt, share * 0.02);
    add(Qt::Key_Escape, share * 0.01);
}

void KeyMix::addPunctuation(double share)
{
    add('.', share * 0.22);
    add(',', share * 0.2);
    add(';', share * 0.12);
    add('\'', share * 0.12);
    add('-', share * 0.1);
    add('/', share * 0.08);
    add('=', share * 0.06);
    add('[', share * 0.04);
    add(']', share * 0.04);
    add('\\', share * 0.02);
}

void KeyMix::addNavigation(double share)
{
    add(Qt::Key_Down, share * 0.28);
    add(Qt::Key_Up, share * 0.22);
    add(Qt::Key_Left, share * 0.17);
    add(Qt::Key_Right, share * 0.16);
    add(Qt::Key_End, share * 0.05);
    add(Qt::Key_Home, share * 0.04);
    add(Qt::Key_PageDown, share * 0.04);
    add(Qt::Key_PageUp, share * 0.02);
    add(Qt::Key_Delete, share * 0.02);
}

void KeyMix::addKeypad(double share)
{
    // Digits 0 to 9, then point, minus, plus, times, divided by.
    constexpr std::array digits{0x01001258, 0x01001260, 0x01001255, 0x01001252, 0x01001257,
                                0x01001254, 0x0100125f, 0x0100125e, 0x01001259, 0xa8};
    constexpr std::array signs{0x010000ff, 0xca, 0x010000d4, 0x010000d5, 0x01000102};
    for (const int key : digits) {
        add(key, share * 0.085);
    }
    for (const int key : signs) {
        add(key, share * 0.03);
    }
}

void KeyMix::addRareKeys(double share)
{
    constexpr int numLock = 0x01000104;
    for (int key = Qt::Key_F1; key <= Qt::Key_F12; ++key) {
        add(key, share * 0.06);
    }
    for (const int key :
         {int{Qt::Key_Insert}, int{Qt::Key_CapsLock}, numLock, int{Qt::Key_Pause},
          int{Qt::Key_VolumeUp}, int{Qt::Key_VolumeDown}, int{Qt::Key_VolumeMute}}) {
        add(key, share * 0.04);
    }
}

void KeyMix::addCombo(const QString& modifiers, const char* keys, double weight)
{
    for (const char key : std::string_view(keys)) {
        m_combos.push_back({modifiers + QString::number(int{key}), weight});
    }
}

void KeyMix::addCombos(Typing typing)
{
    if (typing == Typing::Game) {
        return;
    }
    const QString control = QStringLiteral("control,");
    const QString controlShift = QStringLiteral("control,shift,");
    const QString option = QStringLiteral("option,");
    addCombo(control, "CV", 0.006);
    addCombo(control, "SZX", 0.003);
    addCombo(control, "AFTWN", 0.0012);
    addCombo(controlShift, typing == Typing::Commands ? "CVT" : "TZ", 0.0012);
    m_combos.push_back({option + QString::number(Qt::Key_Tab), 0.004});
    m_combos.push_back({option + QString::number(Qt::Key_F4), 0.0002});
    m_combos.push_back({control + QString::number(Qt::Key_Left), 0.0015});
    m_combos.push_back({control + QString::number(Qt::Key_Right), 0.0015});
    if (typing == Typing::Code) {
        addCombo(control, "DPB/", 0.0015);
        addCombo(controlShift, "FPK", 0.0006);
    }
}
