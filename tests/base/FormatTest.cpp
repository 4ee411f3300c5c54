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
    void writes_data();
    void writes();
    void ignoresTheSystemLocale();
};

void FormatTest::writes_data()
{
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("expected");
    const auto row = [](const QString& written, const char* expected) {
        QTest::addRow("%s", expected) << written << QString::fromLatin1(expected);
    };
    row(Format::shortCount(0), "0");
    row(Format::shortCount(9'999), "9,999");
    row(Format::shortCount(10'000), "10K");
    row(Format::shortCount(12'403), "12.4K");
    row(Format::shortCount(999'600), "1M");
    row(Format::shortCount(3'050'000), "3.05M");
    row(Format::shortCount(-12'403), "-12.4K");
    row(Format::bytes(0), "0 B");
    row(Format::bytes(1'023), "1,023 B");
    row(Format::bytes(1'024), "1 KiB");
    row(Format::bytes(1'536), "1.5 KiB");
    row(Format::bytes(std::numeric_limits<quint64>::max()), "16 EiB");
    row(Format::length(0, Format::Lengths::Metric), "0 cm");
    row(Format::length(40, Format::Lengths::Metric), "1.02 m");
    row(Format::length(1'000'000, Format::Lengths::Metric), "25.4 km");
    row(Format::length(11, Format::lengths(QStringLiteral("imperial"))), "11 in");
    row(Format::length(63'360, Format::Lengths::Imperial), "1 mi");
    row(Format::duration(-5), "0 s");
    row(Format::duration(59), "59 s");
    row(Format::duration(3'599), "59 min");
    row(Format::duration(7'200), "2 h");
    row(Format::duration(7'500), "2 h 5 min");
    row(Format::duration(273'600), "3 d 4 h");
    row(Format::duration(105'919'200), "1,225 d 22 h");
    row(KeyNames::text(Qt::Key_A), "A");
    row(KeyNames::text(Qt::Key_F12), "F12");
    row(KeyNames::text(0x0100125e), "Keypad 7");
    row(KeyNames::text(0xa8), "Keypad 9"); // In Qt, a letter's value.
    row(KeyNames::text(Qt::Key_unknown), "Unknown key");
}

void FormatTest::writes()
{
    QFETCH(QString, written);
    QTEST(written, "expected");
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

REGISTER_TEST(FormatTest);
#include "FormatTest.moc"
