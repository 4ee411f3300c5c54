// SPDX-License-Identifier: GPL-3.0-or-later
#include "InputPipe.h"
#include "support/TestRegistry.h"
#include "system/EvdevDecoder.h"

#include <QTest>

#include <limits>
#include <map>

using Kind = InputAction::Kind;

class EvdevDecoderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void actions_data();
    void actions();
    void phantomKeys_data();
    void phantomKeys();
    void travel_data();
    void travel();
    void dropsButtonsWhereNotWanted();
};

namespace {

constexpr int Lowest = std::numeric_limits<int>::min();
constexpr int Highest = std::numeric_limits<int>::max();
constexpr qint64 Start = 1'700'000'000;
constexpr qint64 StartMicroseconds = Start * 1'000'000;

/// One action as text, such as "key-up 30" or "travel 5"; empty where nothing happened.
QString textOf(const InputAction& action)
{
    static const std::map<Kind, const char*> names{
        {Kind::KeyDown, "key-down"},       {Kind::KeyUp, "key-up"},
        {Kind::FakeLeftPress, "fake"},     {Kind::FakeRightPress, "fake"},
        {Kind::ButtonDown, "button-down"}, {Kind::ButtonUp, "button-up"},
        {Kind::ButtonHeld, "button-held"}, {Kind::ScrollUp, "up"},
        {Kind::ScrollDown, "down"},        {Kind::ScrollLeft, "left"},
        {Kind::ScrollRight, "right"},      {Kind::Travel, "travel"},
        {Kind::EventsLost, "lost"},
    };
    if (action.kind == Kind::None) {
        return {};
    }
    const int number = action.kind <= Kind::FakeRightPress ? action.code : action.amount;
    return QStringLiteral("%1 %2").arg(QLatin1String(names.at(action.kind))).arg(number);
}

QString decodeAll(EvdevDecoder& decoder, const QList<input_event>& records)
{
    QStringList texts;
    for (const input_event& record : records) {
        const QString text = textOf(decoder.decode(record));
        if (!text.isEmpty()) {
            texts.append(text);
        }
    }
    return texts.join(QStringLiteral(", "));
}

} // namespace

void EvdevDecoderTest::actions_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("action");
    const auto row = [](const char* name, int type, int code, int value, const char* action = "") {
        QTest::newRow(name) << type << code << value << QString::fromLatin1(action);
    };
    row("press", EV_KEY, KEY_A, 1, "key-down 30");
    row("release", EV_KEY, KEY_A, 0, "key-up 30");
    row("repeat", EV_KEY, KEY_A, 2);
    row("last code", EV_KEY, 255, 0, "key-up 255");
    row("code above", EV_KEY, 256, 0);
    row("code before the buttons", EV_KEY, BTN_LEFT - 1, 1);
    row("code behind the buttons", EV_KEY, BTN_TASK + 1, 1);
    row("left pressed", EV_KEY, BTN_LEFT, 1, "button-down 0");
    row("left released", EV_KEY, BTN_LEFT, 0, "button-up 0");
    row("left held", EV_KEY, BTN_LEFT, 2, "button-held 0");
    row("middle", EV_KEY, BTN_MIDDLE, 0, "button-up 2");
    row("right", EV_KEY, BTN_RIGHT, 0, "button-up 1");
    row("side", EV_KEY, BTN_SIDE, 0, "button-up 99");
    row("task", EV_KEY, BTN_TASK, 0, "button-up 99");
    row("wheel up", EV_REL, REL_WHEEL, 1, "up 0");
    row("wheel down, far", EV_REL, REL_WHEEL, -7, "down 0");
    row("wheel still", EV_REL, REL_WHEEL, 0);
    row("tilted left", EV_REL, REL_HWHEEL, 1, "left 0");
    row("tilted right", EV_REL, REL_HWHEEL, Lowest, "right 0");
    row("queue overrun", EV_SYN, SYN_DROPPED, 0, "lost 0");
    row("type unknown", 0xffff, KEY_A, 1);
}

void EvdevDecoderTest::actions()
{
    QFETCH(int, type);
    QFETCH(int, code);
    QFETCH(int, value);
    EvdevDecoder decoder(Start, {}, true);
    QTEST(decodeAll(decoder, {makeRecord(type, code, value)}), "action");
}

void EvdevDecoderTest::phantomKeys_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<qint64>("distance");
    QTest::addColumn<QString>("second");
    for (const auto& [code, name] : {std::pair{KEY_LEFT, "left"}, std::pair{KEY_RIGHT, "right"}}) {
        const auto row = [code = code, name = name](const char* edge, qint64 distance, bool fake) {
            const QString real = QStringLiteral("key-down %1, key-up %1").arg(code);
            QTest::addRow("%s, %s", name, edge)
                << code << distance << (fake ? QStringLiteral("fake %1").arg(code) : real);
        };
        row("just before", 90'000, false);
        row("first fake", 90'001, true);
        row("last fake", 114'999, true);
        row("just behind", 115'000, false);
        row("same instant", 0, false);
        row("clock set back", -100'000, false);
    }
}

void EvdevDecoderTest::phantomKeys()
{
    QFETCH(int, code);
    QFETCH(qint64, distance);
    QFETCH(QString, second);
    EvdevDecoder decoder(Start, {}, true);
    const int other = code == KEY_LEFT ? KEY_RIGHT : KEY_LEFT;
    const qint64 first = StartMicroseconds + 5'000'000;
    const auto press = [&decoder](int key, qint64 time) {
        return decodeAll(decoder,
                         {makeRecord(EV_KEY, key, 1, time), makeRecord(EV_KEY, key, 0, time)});
    };
    const auto real = [](int key) { return QStringLiteral("key-down %1, key-up %1").arg(key); };
    QCOMPARE(press(code, first), real(code));
    // The other cursor key has a time of its own, and a letter none.
    QCOMPARE(press(other, first + 50'000), real(other));
    QCOMPARE(press(KEY_A, first + distance), real(KEY_A));
    QCOMPARE(press(code, first + distance), second);
    QCOMPARE(press(code, first + distance + 1'000'000), real(code));
}

void EvdevDecoderTest::travel_data()
{
    QTest::addColumn<QList<input_event>>("records");
    QTest::addColumn<double>("scaleX");
    QTest::addColumn<double>("scaleY");
    QTest::addColumn<QString>("actions");
    const auto row = [](const char* name, const QList<int>& codes, const QList<int>& values,
                        const char* actions, int type = EV_REL, double x = 1.0, double y = 1.0) {
        QList<input_event> records;
        for (qsizetype i = 0; i < values.size(); ++i) {
            records.append(makeRecord(type, codes.at(i % codes.size()), values.at(i)));
        }
        QTest::newRow(name) << records << x << y << QString::fromLatin1(actions);
    };
    const double none = 0.0;
    const double endless = std::numeric_limits<double>::infinity();
    row("steady", {REL_X}, {3, 3, 3}, "travel 0, travel 0");
    row("back", {REL_X}, {3, -3}, "travel 6");
    row("zero is no start", {REL_X}, {0, 5, 0, 7, 8}, "travel 5, travel 1");
    row("axes apart", {REL_X, REL_Y}, {1, 100, 4, 90}, "travel 3, travel 10");
    row("relative x is not scaled", {REL_X}, {10, 30}, "travel 20", EV_REL, 2.0, 2.0);
    row("relative y is scaled", {REL_Y}, {10, 30}, "travel 10", EV_REL, 2.0, 2.0);
    row("position", {ABS_X}, {100, 401}, "travel 150", EV_ABS, 2.0, 1.0);
    row("towards zero", {ABS_Y}, {-7, 7}, "travel 6", EV_ABS, 1.0, 2.0);
    row("no screen", {ABS_X}, {100, 400}, "travel 300", EV_ABS, -1.0, -1.0);
    row("from end to end", {REL_X}, {Lowest, Highest}, "travel 2147483647");
    row("tiny scale", {ABS_X}, {Lowest, Highest}, "travel 2147483647", EV_ABS, 1e-300, 1.0);
    row("axis without extent", {ABS_X, ABS_Y}, {5, 5, 9, 9}, "", EV_ABS, none, none);
    row("screen without extent", {ABS_X, ABS_Y}, {5, 5, 9, 9}, "", EV_ABS, endless, endless);
}

void EvdevDecoderTest::travel()
{
    QFETCH(QList<input_event>, records);
    QFETCH(double, scaleX);
    QFETCH(double, scaleY);
    EvdevDecoder decoder(Start, {.x = scaleX, .y = scaleY}, true);
    QTEST(decodeAll(decoder, records), "actions");
}

void EvdevDecoderTest::dropsButtonsWhereNotWanted()
{
    EvdevDecoder decoder(Start, {}, false);
    QCOMPARE(decodeAll(decoder, {makeRecord(EV_KEY, BTN_LEFT, 1), makeRecord(EV_KEY, KEY_A, 1),
                                 makeRecord(EV_KEY, BTN_LEFT, 0)}),
             QStringLiteral("key-down 30"));
}

REGISTER_TEST(EvdevDecoderTest);
#include "EvdevDecoderTest.moc"
