// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "system/KeyMap.h"
#include "ui/keyboard/KeyCombination.h"
#include "ui/keyboard/KeyboardLayouts.h"

#include <QTest>

#include <linux/input-event-codes.h>

#include <set>

class KeyboardLayoutsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKeyHasItsOwnPlace_data();
    void everyKeyHasItsOwnPlace();
    void everyKeyIsReachedByArrows_data();
    void everyKeyIsReachedByArrows();
    void countsLieOnThePressedKey_data();
    void countsLieOnThePressedKey();
    void codesWithoutPlaceAreKnown_data();
    void codesWithoutPlaceAreKnown();
    void followsTheLocale_data();
    void followsTheLocale();
    void combinationsAreReadable_data();
    void combinationsAreReadable();

private:
    static void addLayouts();
};

void KeyboardLayoutsTest::addLayouts()
{
    QTest::addColumn<QString>("id");
    for (const KeyboardLayouts::Choice& choice : KeyboardLayouts::choices()) {
        QTest::newRow(qPrintable(choice.id)) << choice.id;
    }
}

void KeyboardLayoutsTest::everyKeyHasItsOwnPlace_data()
{
    addLayouts();
}

void KeyboardLayoutsTest::everyKeyHasItsOwnPlace()
{
    QFETCH(QString, id);
    const KeyboardLayout layout = KeyboardLayouts::make(id);
    const bool isIso = id.startsWith(QLatin1String("iso"));
    QCOMPARE(layout.keys().size(), isIso ? 105 : 104);
    QCOMPARE(layout.size(), QSizeF(22.5, 6.25));
    QHash<int, int> places;
    double covered = 0;
    for (qsizetype i = 0; i < layout.keys().size(); ++i) {
        const KeyboardKey& key = layout.keys().at(i);
        QVERIFY(!key.legend.isEmpty() && !key.name.isEmpty());
        ++places[key.key];
        covered += key.area.width() * key.area.height() +
                   key.lower.width() * std::max(0.0, key.lower.bottom() - key.area.bottom());
        for (qsizetype j = 0; j < i; ++j) {
            const KeyboardKey& other = layout.keys().at(j);
            for (const QRectF& part : {other.area, other.lower}) {
                QVERIFY2(!part.intersects(key.area) && !part.intersects(key.lower),
                         qPrintable(key.name + QLatin1Char(' ') + other.name));
            }
        }
    }
    // Five rows of 15 units, 13 function keys, 13 keys for moving about, a keypad of 4 by 5.
    QCOMPARE(covered, 5.0 * 15 + 13 + 13 + 20);
    QCOMPARE(places.take(Qt::Key_Shift), 2);
    QCOMPARE(places.take(Qt::Key_Control), 2);
    QCOMPARE(places.take(Qt::Key_unknown), isIso ? 7 : 6);
    QCOMPARE(std::set(places.begin(), places.end()), std::set{1});
}

void KeyboardLayoutsTest::everyKeyIsReachedByArrows_data()
{
    addLayouts();
}

void KeyboardLayoutsTest::everyKeyIsReachedByArrows()
{
    using Direction = KeyboardLayout::Direction;
    QFETCH(QString, id);
    const KeyboardLayout layout = KeyboardLayouts::make(id);
    std::set<int> reached{0};
    QList<int> waiting{0};
    while (!waiting.isEmpty()) {
        const int from = waiting.takeFirst();
        const QPointF center = layout.keys().at(from).boundingArea().center();
        const QList<std::pair<Direction, QPointF>> ways{{Direction::Left, {-1, 0}},
                                                        {Direction::Right, {1, 0}},
                                                        {Direction::Up, {0, -1}},
                                                        {Direction::Down, {0, 1}}};
        for (const auto& [direction, way] : ways) {
            const int to = layout.neighbour(from, direction);
            const QPointF moved = layout.keys().at(to).boundingArea().center() - center;
            QVERIFY(to == from || QPointF::dotProduct(moved, way) > 0);
            if (reached.insert(to).second) {
                waiting.append(to);
            }
        }
    }
    for (int i = 0; i < layout.keys().size(); ++i) {
        QVERIFY2(reached.contains(i), qPrintable(layout.keys().at(i).name));
    }
}

void KeyboardLayoutsTest::countsLieOnThePressedKey_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<int>("code"); // What the kernel tells of the key at `place`.
    QTest::addColumn<QPointF>("place");
    QTest::addColumn<QString>("name");
    const auto row = [](const char* id, int code, double x, double y, const QString& name) {
        QTest::addRow("%s %d", id, code)
            << QString::fromLatin1(id) << code << QPointF(x, y) << name;
    };
    row("ansi-qwerty", KEY_Q, 2, 2.75, QStringLiteral("Q"));
    row("ansi-qwerty", KEY_BACKSLASH, 14.5, 2.75, QStringLiteral("\\"));
    row("iso-qwerty-uk", KEY_BACKSLASH, 13, 3.75, QStringLiteral("#"));
    row("ansi-qwerty", KEY_ENTER, 13, 3.75, QStringLiteral("Enter"));
    row("iso-qwertz", KEY_ENTER, 13.6, 2.75, QStringLiteral("Enter"));
    row("iso-qwertz", KEY_ENTER, 14.5, 3.75, QStringLiteral("Enter"));
    row("iso-qwertz", KEY_Y, 7, 2.75, QStringLiteral("Z"));
    row("iso-qwertz", KEY_Z, 2.5, 4.75, QStringLiteral("Y"));
    row("iso-qwertz", KEY_APOSTROPHE, 12, 3.75, QStringLiteral("Ä"));
    row("iso-azerty", KEY_Q, 2, 2.75, QStringLiteral("A"));
    row("iso-azerty", KEY_A, 2, 3.75, QStringLiteral("Q"));
    row("iso-azerty", KEY_SEMICOLON, 11, 3.75, QStringLiteral("M"));
    row("iso-azerty", KEY_1, 1.5, 1.75, QStringLiteral("& 1"));
    row("ansi-dvorak", KEY_MINUS, 11.5, 1.75, QStringLiteral("["));
    row("ansi-dvorak", KEY_S, 3, 3.75, QStringLiteral("O"));
    row("ansi-colemak", KEY_E, 4, 2.75, QStringLiteral("F"));
    row("ansi-qwerty", KEY_RIGHTALT, 10.5, 5.75, QStringLiteral("Right Alt"));
    row("ansi-qwerty", KEY_LEFTALT, 3, 5.75, QStringLiteral("Alt"));
    row("ansi-qwerty", KEY_RIGHTSHIFT, 14, 4.75, QStringLiteral("Shift"));
    row("ansi-qwerty", KEY_KP9, 20.7, 2.75, QStringLiteral("Keypad 9"));
    row("ansi-qwerty", KEY_KPPLUS, 22, 3.75, QStringLiteral("Keypad +"));
    row("ansi-qwerty", KEY_KPDOT, 21, 5.75, QStringLiteral("Keypad ."));
    row("ansi-qwerty", KEY_UP, 16.75, 4.75, QStringLiteral("Up"));
    row("ansi-qwerty", KEY_F9, 11.5, 0.5, QStringLiteral("F9"));
}

void KeyboardLayoutsTest::countsLieOnThePressedKey()
{
    QFETCH(QString, id);
    QFETCH(int, code);
    QFETCH(QPointF, place);
    QFETCH(QString, name);
    const KeyboardLayout layout = KeyboardLayouts::make(id);
    const int index = layout.keyAt(place);
    QVERIFY(index >= 0);
    const int stored = KeyMap::translate(static_cast<quint16>(code));
    QCOMPARE(layout.keys().at(index).key, stored);
    QCOMPARE(layout.keyName(stored), name);
}

void KeyboardLayoutsTest::codesWithoutPlaceAreKnown_data()
{
    addLayouts();
}

/// Whatever the listener may store has one place, but for the keys that no such board has.
void KeyboardLayoutsTest::codesWithoutPlaceAreKnown()
{
    QFETCH(QString, id);
    const KeyboardLayout layout = KeyboardLayouts::make(id);
    std::set<int> expected{Qt::Key_VolumeMute, Qt::Key_VolumeDown, Qt::Key_VolumeUp};
    for (int key = Qt::Key_F13; key <= Qt::Key_F24; ++key) {
        expected.insert(key);
    }
    std::set<int> unplaced;
    for (int code = 0; code <= KEY_MAX; ++code) {
        const int key = KeyMap::translate(static_cast<quint16>(code));
        if (key != Qt::Key_unknown && !layout.hasPlace(key)) {
            unplaced.insert(key);
            QVERIFY(!layout.keyName(key).isEmpty());
        }
    }
    QCOMPARE(unplaced, expected);
}

void KeyboardLayoutsTest::followsTheLocale_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("id");
    QTest::newRow("C") << "C"
                       << "ansi-qwerty";
    QTest::newRow("British") << "en_GB"
                             << "iso-qwerty-uk";
    QTest::newRow("Swiss") << "fr_CH"
                           << "iso-qwertz";
    QTest::newRow("Belgian") << "nl_BE"
                             << "iso-azerty";
    QTest::newRow("Canadian") << "fr_CA"
                              << "ansi-qwerty";
}

void KeyboardLayoutsTest::followsTheLocale()
{
    QFETCH(QString, locale);
    QFETCH(QString, id);
    QCOMPARE(KeyboardLayouts::forLocale(QLocale(locale)), id);
}

void KeyboardLayoutsTest::combinationsAreReadable_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("text");
    const QString us = QStringLiteral("ansi-qwerty");
    QTest::newRow("one") << us << "control,67"
                         << "Ctrl+C";
    QTest::newRow("all") << us << "control,option,shift,command,fn,16777264"
                         << "Ctrl+Alt+Shift+Meta+Fn+F1";
    QTest::newRow("keypad") << us << "control,16777429"
                            << "Ctrl+Keypad *";
    QTest::newRow("other letters") << QStringLiteral("iso-qwertz") << "control,89"
                                   << "Ctrl+Z";
    QTest::newRow("no such modifier") << us << "hyper,67"
                                      << "";
    QTest::newRow("no key") << us << "control,"
                            << "";
    QTest::newRow("nothing") << us << ""
                             << "";
}

void KeyboardLayoutsTest::combinationsAreReadable()
{
    QFETCH(QString, id);
    QFETCH(QString, stored);
    QFETCH(QString, text);
    const auto combination = KeyCombination::parse(stored);
    QCOMPARE(combination ? combination->text(KeyboardLayouts::make(id)) : QString(), text);
}

REGISTER_TEST(KeyboardLayoutsTest);
#include "KeyboardLayoutsTest.moc"
