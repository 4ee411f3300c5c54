// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "system/ClickPosition.h"

#include <QTest>

#include <limits>

class InputClickPositionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void positions_data();
    void positions();
};

void InputClickPositionTest::positions_data()
{
    QTest::addColumn<QPoint>("cursor");
    QTest::addColumn<QRect>("screen");
    QTest::addColumn<QPointF>("position");
    const QRect screen(0, 0, 1920, 1080);
    constexpr int farthest = std::numeric_limits<int>::max();
    QTest::newRow("corner") << QPoint(0, 0) << screen << QPointF(0, 0);
    QTest::newRow("within") << QPoint(480, 810) << screen << QPointF(0.25, 0.75);
    QTest::newRow("right of it") << QPoint(2100, 540) << screen << QPointF(0.09375, 0.5);
    QTest::newRow("on its edge") << QPoint(1920, 1080) << screen << QPointF(1, 1);
    QTest::newRow("below it, twice") << QPoint(480, 2700) << screen << QPointF(0.25, 0.5);
    QTest::newRow("left of and above it") << QPoint(-480, -2160) << screen << QPointF(-0.25, -2);
    QTest::newRow("no screen") << QPoint(5, 5) << QRect() << QPointF(0, 0);
    QTest::newRow("far away") << QPoint(farthest, 0) << QRect(0, 0, 1, 1) << QPointF(0, 0);
}

void InputClickPositionTest::positions()
{
    QFETCH(QPoint, cursor);
    QFETCH(QRect, screen);
    QTEST(clickPosition(cursor, screen), "position");
}

REGISTER_TEST(InputClickPositionTest);
#include "InputClickPositionTest.moc"
