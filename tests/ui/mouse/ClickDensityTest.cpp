// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/Theme.h"
#include "ui/mouse/ClickImage.h"
#include "ui/mouse/ScreenPlaces.h"

#include <QTest>

#include <numeric>

using Cells = QList<ClickCell>;
using Places = QList<QRectF>;

namespace {

const QRectF Primary(0, 0, 1, 1);
const QRectF SmallLeft(-0.5, 0.25, 0.5, 0.5);

} // namespace

class ClickDensityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheScreens_data();
    void findsTheScreens();
    void losesNoClick_data();
    void losesNoClick();
    void countsAroundAPlaceAndByRegion();
    void clearsWhatNobodyClicked();
    void scalesFromNothingToTheMost();
};

void ClickDensityTest::findsTheScreens_data()
{
    QTest::addColumn<Cells>("cells");
    QTest::addColumn<Places>("present");
    QTest::addColumn<Places>("expected");
    QTest::newRow("no clicks") << Cells{} << Places{Primary} << Places{};
    QTest::newRow("one screen") << Cells{{0, 0, 1}, {95, 53, 1}} << Places{Primary}
                                << Places{Primary};
    QTest::newRow("no screen plugged in") << Cells{{5, 5, 1}} << Places{} << Places{Primary};
    QTest::newRow("the stored edge") << Cells{{96, 54, 1}} << Places{Primary} << Places{Primary};
    QTest::newRow("a smaller screen left of it")
        << Cells{{-1, 14, 1}, {3, 3, 1}} << Places{Primary, SmallLeft}
        << Places{Primary, SmallLeft};
    QTest::newRow("clicks on the left screen alone")
        << Cells{{-48, 14, 1}} << Places{Primary, SmallLeft} << Places{Primary, SmallLeft};
    QTest::newRow("a screen without clicks")
        << Cells{{3, 3, 1}} << Places{Primary, SmallLeft} << Places{Primary};
    QTest::newRow("clicks beside all screens")
        << Cells{{-1, 0, 1}} << Places{Primary, SmallLeft} << Places{Primary, QRectF(-1, 0, 1, 1)};
    QTest::newRow("left and above, unplugged since")
        << Cells{{-1, 5, 1}, {5, -54, 1}, {-96, 0, 1}} << Places{Primary}
        << Places{Primary, QRectF(-1, 0, 1, 1), QRectF(0, -1, 1, 1)};
    QTest::newRow("further out than any desk")
        << Cells{{-9000, 0, 1}, {0, 0, 1}} << Places{Primary} << Places{Primary};
}

void ClickDensityTest::findsTheScreens()
{
    QFETCH(Cells, cells);
    QFETCH(Places, present);
    QFETCH(Places, expected);
    Places places;
    const ClickDensity density(cells, present);
    for (const ClickDensity::Screen& screen : density.screens()) {
        places.append(screen.place);
    }
    QCOMPARE(places, expected);
}

void ClickDensityTest::losesNoClick_data()
{
    QTest::addColumn<Cells>("cells");
    QTest::addColumn<Places>("present");
    QTest::newRow("in the middle") << Cells{{48, 27, 1000}} << Places{Primary};
    QTest::newRow("in all corners")
        << Cells{{0, 0, 7}, {95, 0, 11}, {0, 53, 13}, {95, 53, 17}} << Places{Primary};
    QTest::newRow("on both sides of a border")
        << Cells{{-1, 20, 500}, {0, 20, 300}, {-48, 14, 1}} << Places{Primary, SmallLeft};
    QTest::newRow("implied screens") << Cells{{-1, -1, 5}, {0, 0, 3}, {-96, 53, 2}} << Places{};
}

void ClickDensityTest::losesNoClick()
{
    QFETCH(Cells, cells);
    QFETCH(Places, present);
    const ClickDensity density(cells, present);
    qint64 clicks = 0;
    for (const ClickCell& cell : cells) {
        clicks += cell.count;
    }
    QCOMPARE(density.clicks(), clicks);
    for (const ClickDensity::Screen& screen : density.screens()) {
        const double counted = std::accumulate(screen.clicks.begin(), screen.clicks.end(), 0.0);
        const double spread = std::accumulate(screen.density.begin(), screen.density.end(), 0.0);
        QVERIFY2(std::abs(counted - spread) <= 1e-4 * counted, qPrintable(QString::number(spread)));
        clicks -= std::llround(counted);
    }
    QCOMPARE(clicks, 0);
}

void ClickDensityTest::countsAroundAPlaceAndByRegion()
{
    const ClickDensity density({{10, 10, 5}, {12, 10, 7}, {20, 10, 11}, {95, 53, 13}, {-1, 27, 2}},
                               {Primary});
    QCOMPARE(density.clicksNear({10.5 / 96, 10.5 / 54}), 12);
    QCOMPARE(density.clicksNear({40.5 / 96, 10.5 / 54}), 0);
    qint64 topLeft = 0;
    qint64 rightOfLeftScreen = 0;
    for (const ClickDensity::Region& region : density.regions()) {
        const bool isPrimary = region.screen == Primary;
        topLeft += isPrimary && region.row == 0 && region.column == 0 ? region.clicks : 0;
        rightOfLeftScreen +=
            !isPrimary && region.row == 1 && region.column == 2 ? region.clicks : 0;
    }
    QCOMPARE(topLeft, 23);
    QCOMPARE(rightOfLeftScreen, 2);
    QCOMPARE(density.regions().size(), 18);
}

void ClickDensityTest::clearsWhatNobodyClicked()
{
    const ClickDensity density({{20, 10, 50}, {80, 40, 5000}}, {Primary});
    const ClickDensity::Screen& screen = density.screens().constFirst();
    const QPalette palette = Theme::lightPalette();
    const DensityScale scale(DensityScale::Form::Logarithmic, density.largest());
    const QImage image = ClickImage::of(screen, scale, palette);
    QCOMPARE(image.size(), QSize(4 * 96, 4 * 54));
    const auto alpha = [&image](int column, int row) {
        return qAlpha(image.pixel(4 * column + 2, 4 * row + 2));
    };
    QCOMPARE(alpha(50, 25), 0);
    QCOMPARE(alpha(80, 40), 255);
    QVERIFY(alpha(20, 10) > 128); // A hundredth of the most is still seen.
    const QImage linear = ClickImage::of(
        screen, DensityScale(DensityScale::Form::Linear, density.largest()), palette);
    QVERIFY(qAlpha(linear.pixel(4 * 20 + 2, 4 * 10 + 2)) < 32);
}

void ClickDensityTest::scalesFromNothingToTheMost()
{
    for (const auto form : {DensityScale::Form::Linear, DensityScale::Form::Logarithmic}) {
        const DensityScale scale(form, 1234.4);
        QCOMPARE(scale.share(0), 0.0);
        QCOMPARE(scale.share(1234.4), 1.0);
        QCOMPARE(DensityScale(form, 0).share(0), 0.0);
        QCOMPARE(scale.ticks().constFirst(), 0);
        QCOMPARE(scale.ticks().constLast(), 1234);
    }
    const QList<qint64> ticks{0, 1, 10, 100, 1234};
    QCOMPARE(DensityScale(DensityScale::Form::Logarithmic, 1234.4).ticks(), ticks);
}

REGISTER_TEST(ClickDensityTest);
#include "ClickDensityTest.moc"
