// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Format.h"
#include "base/KeyNames.h"
#include "support/TestRegistry.h"

#include <QLocale>
#include <QTest>

#include <limits>

class FormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shortCounts_data();
    void shortCounts();
    void bytes_data();
    void bytes();
    void durations_data();
    void durations();
    void ignoresTheSystemLocale();
    void namesKeysThatQtHasNoNameFor_data();
    void namesKeysThatQtHasNoNameFor();
};

void FormatTest::shortCounts_data()
{
    QTest::addColumn<qint64>("number");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << Q_INT64_C(0) << QStringLiteral("0");
    QTest::newRow("last in full") << Q_INT64_C(9999) << QStringLiteral("9,999");
    QTest::newRow("first shortened") << Q_INT64_C(10000) << QStringLiteral("10K");
    QTest::newRow("three digits") << Q_INT64_C(12403) << QStringLiteral("12.4K");
    QTest::newRow("rounds to the next unit") << Q_INT64_C(999600) << QStringLiteral("1M");
    QTest::newRow("millions") << Q_INT64_C(3050000) << QStringLiteral("3.05M");
    QTest::newRow("negative") << Q_INT64_C(-12403) << QStringLiteral("-12.4K");
}

void FormatTest::shortCounts()
{
    QFETCH(qint64, number);
    QTEST(Format::shortCount(number), "text");
}

void FormatTest::bytes_data()
{
    QTest::addColumn<quint64>("number");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << Q_UINT64_C(0) << QStringLiteral("0 B");
    QTest::newRow("below a unit") << Q_UINT64_C(1023) << QStringLiteral("1,023 B");
    QTest::newRow("a unit") << Q_UINT64_C(1024) << QStringLiteral("1 KiB");
    QTest::newRow("a half more") << Q_UINT64_C(1536) << QStringLiteral("1.5 KiB");
    QTest::newRow("largest") << std::numeric_limits<quint64>::max() << QStringLiteral("16 EiB");
}

void FormatTest::bytes()
{
    QFETCH(quint64, number);
    QTEST(Format::bytes(number), "text");
}

void FormatTest::durations_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("negative") << Q_INT64_C(-5) << QStringLiteral("0 s");
    QTest::newRow("seconds") << Q_INT64_C(59) << QStringLiteral("59 s");
    QTest::newRow("minutes") << Q_INT64_C(3599) << QStringLiteral("59 min");
    QTest::newRow("whole hours") << Q_INT64_C(7200) << QStringLiteral("2 h");
    QTest::newRow("hours") << Q_INT64_C(7500) << QStringLiteral("2 h 5 min");
    QTest::newRow("days") << Q_INT64_C(273600) << QStringLiteral("3 d 4 h");
}

void FormatTest::durations()
{
    QFETCH(qint64, seconds);
    QTEST(Format::duration(seconds), "text");
}

void FormatTest::ignoresTheSystemLocale()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    const QString number = Format::count(12403);
    const QString day = Format::day(QDate(2026, 3, 1));
    QLocale::setDefault(before);
    QCOMPARE(number, QStringLiteral("12,403"));
    QCOMPARE(day, QStringLiteral("1 March 2026"));
}

void FormatTest::namesKeysThatQtHasNoNameFor_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("text");
    QTest::newRow("letter") << static_cast<int>(Qt::Key_A) << QStringLiteral("A");
    QTest::newRow("space") << static_cast<int>(Qt::Key_Space) << QStringLiteral("Space");
    QTest::newRow("function key") << static_cast<int>(Qt::Key_F12) << QStringLiteral("F12");
    QTest::newRow("keypad") << 0x0100125e << QStringLiteral("Keypad 7");
    QTest::newRow("keypad, a letter's value") << 0xa8 << QStringLiteral("Keypad 9");
    QTest::newRow("unmapped") << static_cast<int>(Qt::Key_unknown) << QStringLiteral("Unknown key");
}

void FormatTest::namesKeysThatQtHasNoNameFor()
{
    QFETCH(int, key);
    QTEST(KeyNames::text(key), "text");
}

REGISTER_TEST(FormatTest);
#include "FormatTest.moc"
