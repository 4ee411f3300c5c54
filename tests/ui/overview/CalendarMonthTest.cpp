// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/overview/CalendarMonth.h"

#include <QSignalSpy>
#include <QTest>

class CalendarMonthTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheDayUnderThePointer_data();
    void findsTheDayUnderThePointer();
    void movesByKeyboard();

private:
    static constexpr QSize Size{280, 280};
    const QDate m_today{2026, 11, 21};
};

void CalendarMonthTest::findsTheDayUnderThePointer_data()
{
    QTest::addColumn<Qt::DayOfWeek>("weekStart");
    QTest::addColumn<int>("column"); // Of the sheet, from 0.
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("day"); // 0 for none.
    const auto row = [](const char* name, Qt::DayOfWeek weekStart, int column, int line, int day) {
        QTest::newRow(name) << weekStart << column << line << day;
    };
    // 1 November 2026 is a Sunday.
    row("last of the first week", Qt::Monday, 6, 0, 1);
    row("before the month", Qt::Monday, 5, 0, 0);
    row("a Monday", Qt::Monday, 0, 3, 16);
    row("today", Qt::Monday, 5, 3, 21);
    row("to come", Qt::Monday, 6, 3, 0);
    row("after the month", Qt::Monday, 1, 5, 0);
    row("weeks from Sunday", Qt::Sunday, 0, 0, 1);
    row("a Monday there", Qt::Sunday, 1, 2, 16);
    row("weeks from Saturday", Qt::Saturday, 1, 0, 1);
}

void CalendarMonthTest::findsTheDayUnderThePointer()
{
    QFETCH(Qt::DayOfWeek, weekStart);
    QFETCH(int, column);
    QFETCH(int, row);
    QFETCH(int, day);
    CalendarMonth calendar(weekStart);
    calendar.resize(Size);
    calendar.setMonth({2026, 11, 1}, {}, {.name = QStringLiteral("Keys")}, m_today);
    const QSignalSpy clicked(&calendar, &CalendarMonth::dayClicked);
    const int line = QFontMetrics(calendar.font()).height();
    const QPoint cell(column * 40 + 20, line + 4 + row * (280 - 2 * line - 12) / 6 + 18);
    QTest::mouseClick(&calendar, Qt::LeftButton, {}, cell);
    QCOMPARE(clicked.value(0).value(0).toDate(), day > 0 ? QDate(2026, 11, day) : QDate());

    const auto before = clicked.size();
    QTest::mousePress(&calendar, Qt::LeftButton, {}, {100, 150});
    QTest::mouseRelease(&calendar, Qt::LeftButton, {}, {140, 150});
    QCOMPARE(clicked.size(), before);
}

void CalendarMonthTest::movesByKeyboard()
{
    CalendarMonth calendar(Qt::Monday);
    calendar.setMonth({2026, 11, 1}, {{{2026, 11, 14}, 12'403}}, {.name = QStringLiteral("Keys")},
                      m_today);
    calendar.show();
    calendar.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&calendar));
    calendar.setFocus(Qt::TabFocusReason);
    const QSignalSpy clicked(&calendar, &CalendarMonth::dayClicked);
    const QSignalSpy stepped(&calendar, &CalendarMonth::monthStepped);
    QTest::keyClick(&calendar, Qt::Key_Up);
    QCOMPARE(calendar.accessibleDescription(),
             QStringLiteral("Saturday, 14 November 2026\nKeys: 12,403"));
    QTest::keyClick(&calendar, Qt::Key_Return);
    QTest::keyClick(&calendar, Qt::Key_Down);
    QTest::keyClick(&calendar, Qt::Key_Right);
    QVERIFY(calendar.accessibleDescription().endsWith(QStringLiteral("still to come")));
    QTest::keyClick(&calendar, Qt::Key_Return);
    QCOMPARE(clicked.size(), 1);
    QCOMPARE(clicked.at(0).at(0).toDate(), QDate(2026, 11, 14));
    QTest::keyClick(&calendar, Qt::Key_PageUp);
    QTest::keyClick(&calendar, Qt::Key_PageDown);
    QCOMPARE(stepped.size(), 2);
    QCOMPARE(stepped.at(0).at(0).toInt(), -1);
    QCOMPARE(stepped.at(1).at(0).toInt(), 1);
}

REGISTER_TEST(CalendarMonthTest);
#include "CalendarMonthTest.moc"
