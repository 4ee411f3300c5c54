// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/HeatGrid.h"
#include "ui/Ramp.h"
#include "ui/Theme.h"
#include "ui/keyboard/KeyboardDrawing.h"
#include "ui/keyboard/KeyboardLayouts.h"

#include <QTest>

class KeyboardDrawingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void hitsWhatIsDrawn_data();
    void hitsWhatIsDrawn();
    void coloursByCount();
    void tellsCountAndShare_data();
    void tellsCountAndShare();
    void scalePlacesCounts_data();
    void scalePlacesCounts();
    void gridHoldsCellsInPlace();

private:
    static int indexOf(const KeyboardLayout& layout, int key);
};

void KeyboardDrawingTest::init()
{
    Theme::apply(QStringLiteral("light"));
}

int KeyboardDrawingTest::indexOf(const KeyboardLayout& layout, int key)
{
    for (int i = 0; i < layout.keys().size(); ++i) {
        if (layout.keys().at(i).key == key) {
            return i;
        }
    }
    return -1;
}

void KeyboardDrawingTest::hitsWhatIsDrawn_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("wide") << QSize(1000, 200);
    QTest::newRow("high") << QSize(640, 400);
    QTest::newRow("huge") << QSize(3000, 2000);
}

void KeyboardDrawingTest::hitsWhatIsDrawn()
{
    QFETCH(QSize, size);
    KeyboardDrawing drawing;
    drawing.setKeyboard(KeyboardLayouts::make(QStringLiteral("iso-qwertz")));
    drawing.resize(size);
    const QRectF inside = QRectF(drawing.rect()).adjusted(-0.5, -0.5, 0.5, 0.5);
    for (int i = 0; i < drawing.keyboard().keys().size(); ++i) {
        const QRectF area = drawing.keyArea(i);
        QVERIFY(inside.contains(area));
        QCOMPARE(drawing.keyAt(area.center()), i);
        QCOMPARE(drawing.keyAt(area.topLeft() + QPointF(1, 1)), i);
        QCOMPARE(drawing.keyAt(area.bottomRight() - QPointF(1, 1)), i);
    }
    const QRectF escape = drawing.keyArea(0);
    QCOMPARE(drawing.keyAt(QPointF(escape.right() + 2, escape.center().y())), -1);
    QCOMPARE(drawing.keyAt(escape.topLeft() - QPointF(2, 2)), -1);
}

/// The colour of a cap's lower left part, clear of texts, says its count, at any density.
void KeyboardDrawingTest::coloursByCount()
{
    KeyboardDrawing drawing;
    drawing.setKeyboard(KeyboardLayouts::make(QStringLiteral("iso-azerty")));
    drawing.setCounts({{'Q', 1000}, {'A', 10}, {Qt::Key_Shift, 500}, {Qt::Key_F13, 9000}});
    drawing.resize(1000, drawing.heightForWidth(1000));
    const auto colours = [&drawing] {
        const QImage image = drawing.grab().toImage();
        QList<QRgb> result;
        for (const QPointF& place : {QPointF(2, 2.75), QPointF(2, 3.75), QPointF(0.6, 4.75),
                                     QPointF(14, 4.75), QPointF(4, 2.75)}) {
            const QRectF area = drawing.keyArea(drawing.keyboard().keyAt(place));
            const QPointF corner = area.bottomLeft() + QPointF(5, -10);
            result.append(image.pixel((corner * image.devicePixelRatio()).toPoint()));
        }
        return result;
    };
    const auto ramp = [&drawing](double share) {
        return Ramp::quantity(share, drawing.palette()).rgb();
    };
    const QRgb empty = drawing.grab().toImage().pixel(0, 0);
    QCOMPARE(colours(), QList<QRgb>({ramp(1), ramp(0.01), ramp(0.5), ramp(0.5), empty}));
    drawing.setScaleForm(QuantityScale::Form::Logarithmic);
    QCOMPARE(colours().at(1), ramp(1.0 / 3));
}

void KeyboardDrawingTest::tellsCountAndShare_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("text");
    QTest::newRow("letter") << int(Qt::Key_A) << "Q: 12,403 keys, 41.3 %";
    QTest::newRow("one") << int(Qt::Key_F1) << "F1: 1 key, 0.0 %";
    QTest::newRow("both") << int(Qt::Key_Shift) << "Shift, left and right: 7,596 keys, 25.3 %";
    QTest::newRow("none") << int(Qt::Key_F2) << "F2: not pressed";
    QTest::newRow("uncounted") << int(Qt::Key_unknown) << "Meta: counted in the totals only";
}

void KeyboardDrawingTest::tellsCountAndShare()
{
    QFETCH(int, key);
    QFETCH(QString, text);
    KeyboardDrawing drawing;
    drawing.setKeyboard(KeyboardLayouts::make(QStringLiteral("iso-azerty")));
    // The volume key has no place, but its part in the sum.
    drawing.setCounts(
        {{'A', 12403}, {Qt::Key_F1, 1}, {Qt::Key_Shift, 7596}, {Qt::Key_VolumeUp, 10000}});
    QCOMPARE(drawing.describe(indexOf(drawing.keyboard(), key)), text);
    QCOMPARE(drawing.scale().largest(), 12403);
}

void KeyboardDrawingTest::scalePlacesCounts_data()
{
    using Form = QuantityScale::Form;
    QTest::addColumn<Form>("form");
    QTest::addColumn<qint64>("largest");
    QTest::addColumn<qint64>("count");
    QTest::addColumn<double>("share");
    QTest::newRow("linear") << Form::Linear << qint64(200) << qint64(50) << 0.25;
    QTest::newRow("linear, beyond") << Form::Linear << qint64(200) << qint64(500) << 1.0;
    QTest::newRow("tenfold") << Form::Logarithmic << qint64(10000) << qint64(100) << 0.5;
    QTest::newRow("least") << Form::Logarithmic << qint64(10000) << qint64(1) << 0.0;
    QTest::newRow("only ones") << Form::Logarithmic << qint64(1) << qint64(1) << 1.0;
    QTest::newRow("nothing") << Form::Linear << qint64(0) << qint64(0) << 0.0;
}

void KeyboardDrawingTest::scalePlacesCounts()
{
    QFETCH(QuantityScale::Form, form);
    QFETCH(qint64, largest);
    QFETCH(qint64, count);
    QFETCH(double, share);
    const QuantityScale scale(largest, form);
    QCOMPARE(scale.share(count), share);
    QCOMPARE(scale.countAt(share), std::min(count, largest));
}

void KeyboardDrawingTest::gridHoldsCellsInPlace()
{
    QString described;
    HeatGrid grid(QStringLiteral("Keys"), [&described](int row, int column) {
        described = QStringLiteral("%1/%2").arg(row).arg(column);
        return described;
    });
    grid.setLabels({QStringLiteral("Mon"), QStringLiteral("Tue")},
                   {QStringLiteral("0"), {}, QStringLiteral("2")});
    grid.setCounts({0, 1, 2, 3, 4, 5});
    QCOMPARE(grid.count(1, 0), 3);
    QCOMPARE(grid.sum(), 15);
    grid.resize(300, 200);
    for (int cell = 0; cell < 6; ++cell) {
        QCOMPARE(grid.cellAt(grid.cellArea(cell).center()), cell);
    }
    QCOMPARE(grid.cellAt({1, 100}), -1);
    grid.show();
    grid.setFocus();
    for (const Qt::Key key :
         {Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Down, Qt::Key_Left}) {
        QTest::keyClick(&grid, key);
    }
    QCOMPARE(described, QStringLiteral("1/1"));
    const QImage image = grid.grab().toImage();
    const QPointF place = grid.cellArea(5).center() * image.devicePixelRatio();
    QCOMPARE(image.pixel(place.toPoint()), Ramp::quantity(1, grid.palette()).rgb());
}

REGISTER_TEST(KeyboardDrawingTest);
#include "KeyboardDrawingTest.moc"
