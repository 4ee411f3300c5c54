// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/JsonReader.h"
#include "account/JsonWriter.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <cmath>
#include <limits>

namespace {

QByteArray nested(int levels)
{
    return QByteArray(levels, '[') + QByteArray(levels, ']');
}

QVariant nestedTree(int levels)
{
    QVariant tree = QVariantList();
    for (int level = 1; level < levels; ++level) {
        tree = QVariantList{tree};
    }
    return tree;
}

QVariantList list(const QVariant& value)
{
    return {value};
}

} // namespace

class JsonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAndWrites_data();
    void readsAndWrites();
    void refusesText_data();
    void refusesText();
    void writesOrRefuses_data();
    void writesOrRefuses();
    void indents();
};

void JsonTest::readsAndWrites_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QVariant>("tree");
    const auto row = [](const char* name, const QByteArray& text, const QVariant& tree) {
        QTest::newRow(name) << text << tree;
    };
    row("empty object", "{}", QVariantMap());
    row("empty array", "[]", QVariantList());
    row("largest", "[9223372036854775807]", list(std::numeric_limits<qint64>::max()));
    row("smallest", "[-9223372036854775808]", list(std::numeric_limits<qint64>::min()));
    row("beyond what a double holds", "[9007199254740993]", list(qint64{9007199254740993}));
    row("text of digits", R"(["18446744073709551616","007"])",
        QVariantList{QStringLiteral("18446744073709551616"), QStringLiteral("007")});
    row("fraction", "[0.1]", list(0.1));
    row("all kinds", R"({"a":[true,false,null,1,"x",{"b":2.5}],"ü":""})",
        QVariantMap{
            {QStringLiteral("a"), QVariantList{true, false, QVariant(), 1LL, QStringLiteral("x"),
                                               QVariantMap{{QStringLiteral("b"), 2.5}}}},
            {QStringLiteral("ü"), QString()}});
    row("escapes", R"(["\"\\/\b\f\n\r\t\u0000😀{[-9e999"])",
        list(QStringLiteral("\"\\/\b\f\n\r\t") + QChar(0) + QStringLiteral("😀{[-9e999")));
    row("deepest", nested(JsonReader::DeepestNesting), nestedTree(JsonReader::DeepestNesting));
}

void JsonTest::readsAndWrites()
{
    QFETCH(QByteArray, text);
    QFETCH(QVariant, tree);
    JsonReader reader;
    QVERIFY2(reader.parse(text), qPrintable(reader.errorString()));
    QCOMPARE(reader.result(), tree);
    QCOMPARE(reader.errorString(), QString());
    QVERIFY(reader.parse(QString::fromUtf8(text)));
    QCOMPARE(reader.result(), tree);
    JsonWriter writer;
    QVERIFY2(writer.stringify(tree), qPrintable(writer.errorString()));
    QCOMPARE(writer.result().toUtf8(), text);
}

void JsonTest::refusesText_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("error");
    const QString range = QStringLiteral("number out of range at byte 1");
    QTest::newRow("nothing") << QByteArray() << QStringLiteral("illegal value at byte 0");
    QTest::newRow("scalar") << QByteArray("5") << QStringLiteral("illegal value at byte 1");
    QTest::newRow("garbage after the end")
        << QByteArray("{}x") << QStringLiteral("garbage at the end of the document at byte 2");
    QTest::newRow("bad UTF-8") << QByteArray("[\"\xff\"]")
                               << QStringLiteral("invalid UTF8 string at byte 2");
    QTest::newRow("one too large") << QByteArray("[9223372036854775808]") << range;
    QTest::newRow("one too small") << QByteArray("[-9223372036854775809]") << range;
    QTest::newRow("largest without a sign") << QByteArray("[18446744073709551615]") << range;
    QTest::newRow("2^63 as a fraction") << QByteArray("[9223372036854775808.0]") << range;
    QTest::newRow("infinite") << QByteArray("[1e999]")
                              << QStringLiteral("illegal number at byte 6");
    QTest::newRow("deeper") << nested(JsonReader::DeepestNesting + 1)
                            << QStringLiteral("nested too deep at byte 512");
    QTest::newRow("deep beyond any stack")
        << QByteArray(5'000'000, '[') << QStringLiteral("nested too deep at byte 512");
    QTest::newRow("larger") << '[' + QByteArray(JsonReader::LargestInput - 1, ' ') + ']'
                            << QStringLiteral("more than 67108864 bytes");
}

void JsonTest::refusesText()
{
    QFETCH(QByteArray, text);
    JsonReader reader;
    QVERIFY(reader.parse(QByteArrayLiteral("{}")));
    QVERIFY(!reader.parse(text));
    QVERIFY(reader.result().isNull());
    QTEST(reader.errorString(), "error");
}

void JsonTest::writesOrRefuses_data()
{
    QTest::addColumn<QVariant>("tree");
    QTest::addColumn<QString>("text"); ///< Empty: refused.
    constexpr auto largest = std::numeric_limits<qint64>::max();
    QTest::newRow("unsigned that fits")
        << QVariant(list(quint64{largest})) << QStringLiteral("[9223372036854775807]");
    QTest::newRow("unsigned beyond") << QVariant(list(quint64{largest} + 1)) << QString();
    QTest::newRow("float") << QVariant(list(0.5F)) << QStringLiteral("[0.5]");
    QTest::newRow("infinite") << QVariant(list(HUGE_VAL)) << QString();
    QTest::newRow("no number") << QVariant(list(std::nan(""))) << QString();
    QTest::newRow("2^63") << QVariant(list(9223372036854775808.0)) << QString();
    QTest::newRow("bytes") << QVariant(list(QByteArray("x"))) << QString();
    QTest::newRow("scalar") << QVariant(5) << QString();
    QTest::newRow("nothing") << QVariant() << QString();
    QTest::newRow("texts") << QVariant(QStringList{QStringLiteral("1"), QStringLiteral("b")})
                           << QStringLiteral(R"(["1","b"])");
    QTest::newRow("deeper") << nestedTree(JsonReader::DeepestNesting + 1) << QString();
}

void JsonTest::writesOrRefuses()
{
    QFETCH(QVariant, tree);
    QFETCH(QString, text);
    JsonWriter writer;
    QCOMPARE(writer.stringify(tree), !text.isEmpty());
    QCOMPARE(writer.result(), text);
    QCOMPARE(writer.errorString().isEmpty(), !text.isEmpty());
}

void JsonTest::indents()
{
    JsonWriter writer;
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(2);
    QVERIFY(writer.stringify(
        QVariantMap{{QStringLiteral("a"), QVariantList{1, QStringLiteral("    \n    ")}}}));
    QCOMPARE(writer.result(),
             QStringLiteral("{\n  \"a\": [\n    1,\n    \"    \\n    \"\n  ]\n}\n"));
}

REGISTER_TEST(JsonTest);
#include "JsonTest.moc"
