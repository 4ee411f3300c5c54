// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"
#include "ui/CountsModel.h"
#include "ui/FigureTiles.h"
#include "ui/QueryWorker.h"
#include "ui/TableText.h"
#include "ui/mouse/ClickMap.h"
#include "ui/mouse/MouseView.h"

#include <QTest>

namespace {

/// The rows of the model whose labels have this header.
QString table(const QObject& view, const char* header)
{
    QStringList rows;
    for (const CountsModel* model : view.findChildren<CountsModel*>()) {
        if (model->headerData(0, Qt::Horizontal) == QLatin1String(header)) {
            for (const CountsModel::Row& row : model->rows()) {
                rows.append(QStringLiteral("%1 %2").arg(row.label).arg(row.count));
            }
        }
    }
    return rows.join(QStringLiteral(", "));
}

} // namespace

class MouseViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsTheClicksAroundThePointer();
    void keepsTheShapeOfTheScreens();
    void showsWhatWasCounted();
};

void MouseViewTest::tellsTheClicksAroundThePointer()
{
    ClickMap map;
    map.resize(480, 320);
    map.setDensity(ClickDensity({{10, 10, 1234}, {80, 40, 37'328}}, {}), 16.0 / 9);
    QCOMPARE(map.describe({10.5 / 96, 10.5 / 54}),
             QStringLiteral("Around here: 1,234 clicks, 3.2 %"));
    QCOMPARE(map.describe({1.5, 0.5}), QString());

    // By keyboard: from the middle, as often as it takes to get there.
    map.show();
    QTest::keyClick(&map, Qt::Key_Right);
    for (int step = 0; step < 11; ++step) {
        QTest::keyClick(&map, Qt::Key_Right);
    }
    for (int step = 0; step < 5; ++step) {
        QTest::keyClick(&map, Qt::Key_Down);
    }
    QVERIFY2(map.accessibleDescription().startsWith(QStringLiteral("Around here: 37,328 clicks")),
             qPrintable(map.accessibleDescription()));
}

void MouseViewTest::keepsTheShapeOfTheScreens()
{
    const QRectF primary(0, 0, 1, 1);
    const QRectF left(-0.5, 0, 0.5, 1);
    ClickMap map;
    map.resize(600, 300);
    map.setDensity(ClickDensity({{-1, 1, 1}, {1, 1, 1}}, {primary, left}), 2.0);
    const QPointF begin = map.toWidget({-0.5, 0});
    const QPointF end = map.toWidget({1, 1});
    QCOMPARE((end.x() - begin.x()) / (end.y() - begin.y()), 3.0);
    QVERIFY(begin.x() >= 0 && begin.y() >= 0 && end.x() < 600 && end.y() < 300);
}

void MouseViewTest::showsWhatWasCounted()
{
    const TestDatabase database;
    for (const char* rows :
         {"mouseclicks VALUES('2026-11-19', 9, 40, 0), ('2026-11-20', 9, 60, 0)",
          "mouseclicks_frequency VALUES('2026-11-20', 9, 0, 30, 0), ('2026-11-20', 9, 99, 10, 0)",
          "mousescrolls VALUES('2026-11-20', 9, 1, 5, 0), ('2026-11-20', 9, 2, 15, 0)",
          "mousedistance VALUES('2026-11-19', 9, 100, 0), ('2026-11-20', 9, 300, 0)",
          "mousepoints VALUES('2026-11-20', 9, 0.01, 0.99, 0), ('2026-11-20', 9, -0.5, 0.5, 0)"}) {
        QVERIFY(database.exec(QStringLiteral("INSERT INTO ") + QLatin1String(rows)));
    }
    Settings::instance().setValue(SettingsKeys::MouseDistanceSystem, QStringLiteral("imperial"));
    QueryWorker worker(database.database()->getDatabaseFileName());
    MouseView view({.worker = &worker, .applicationName = {}, .applicationIcon = {}});
    view.setScope({.first = {}, .last = QDate(2026, 11, 20), .profileId = {}});
    view.show();
    auto* tiles = view.findChild<FigureTiles*>();
    QTRY_VERIFY(tiles->isVisible());
    QCOMPARE(TableText::tabbed(*tiles->model()),
             QStringLiteral("Figure\tValue\tRemark\n"
                            "Clicks\t100\t\n"
                            "Scroll steps\t20\t\n"
                            "Travel\t33.3 ft\t\n"
                            "Travel per day\t16.7 ft\tMean of 2 days\n"
                            "Longest day\t25 ft\t20 November 2026\n"));
    QCOMPARE(table(view, "Button"), QStringLiteral("Left 30, Right 0, Middle 0, Other 10"));
    QCOMPARE(table(view, "Direction"), QStringLiteral("Up 5, Down 15, Left 0, Right 0"));
    const QString regions = table(view, "Region");
    QVERIFY2(regions.contains(QStringLiteral("Main screen, Bottom left 1")) &&
                 regions.contains(QStringLiteral("Left screen, Middle 1")),
             qPrintable(regions));
}

REGISTER_TEST(MouseViewTest);
#include "MouseViewTest.moc"
