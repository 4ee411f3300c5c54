// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/Theme.h"
#include "ui/network/CountryNames.h"
#include "ui/network/WorldMap.h"
#include "ui/network/WorldShapes.h"

#include <QSignalSpy>
#include <QTest>

using Codes = QStringList;

namespace {

constexpr quint64 KiB = 1024;
constexpr quint64 GiB = KiB * KiB * KiB;

/// Far more with the neighbours of the smallest countries than with these themselves.
QList<CountryValue> values()
{
    return {{QStringLiteral("MT"), 3 * KiB, KiB}, {QStringLiteral("LAN"), 2 * GiB, GiB},
            {QStringLiteral("DE"), 5 * GiB, GiB}, {QStringLiteral("SG"), 900 * KiB, 0},
            {QStringLiteral("US"), GiB, GiB},     {QStringLiteral("??"), KiB, 0},
            {QStringLiteral("MY"), 7 * KiB, 0},   {QStringLiteral("FR"), 0, 0}};
}

} // namespace

class WorldMapTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placesTheCountries_data();
    void placesTheCountries();
    void refusesAMalformedMap_data();
    void refusesAMalformedMap();
    void findsTheCountryUnderTheMouse();
    void stepsByTraffic();
    void shadesByTraffic();
    void namesCodes_data();
    void namesCodes();
};

void WorldMapTest::placesTheCountries_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QPointF>("inside"); // Shares of the sheet.
    const auto row = [](const char* place, const char* code, double x, double y) {
        QTest::newRow(place) << QString::fromLatin1(code) << QPointF(x, y);
    };
    row("Kansas City", "US", 0.239, 0.234);
    row("Berlin", "DE", 0.505, 0.139);
    row("Brasilia", "BR", 0.339, 0.694);
    row("Maseru, a hole in South Africa's outline", "LS", 0.544, 0.808);
    row("Taupo", "NZ", 0.909, 0.879);
    row("Saint-Elie, which the outlines' source draws with France", "GF", 0.322, 0.519);
    row("Egvekinot, beyond the 180th meridian", "RU", 0.832, 0.058);
}

void WorldMapTest::placesTheCountries()
{
    QFETCH(QString, code);
    QFETCH(QPointF, inside);
    const WorldShapes& shapes = WorldShapes::instance();
    QVERIFY(shapes.countries().size() > 240);
    const QPointF point(inside.x() * shapes.size().width(), inside.y() * shapes.size().height());
    Codes found;
    for (const WorldShapes::Country& country : shapes.countries()) {
        if (country.outline.contains(point)) {
            found += country.code;
        }
    }
    QCOMPARE(found, Codes{code});
}

void WorldMapTest::refusesAMalformedMap_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no countries") << QByteArray("100 50\n");
    QTest::newRow("no size") << QByteArray("DE 10 10;1 1 5 0 0 5\n");
    QTest::newRow("a size of three numbers") << QByteArray("100 50 2\nDE 10 10\n");
    QTest::newRow("a code of three letters") << QByteArray("100 50\nDEU 10 10\n");
    QTest::newRow("no middle") << QByteArray("100 50\nDE 10;1 1 5 0 0 5\n");
    QTest::newRow("half a corner") << QByteArray("100 50\nDE 10 10;1 1 5 0 0\n");
    QTest::newRow("two corners") << QByteArray("100 50\nDE 10 10;1 1 5 0\n");
    QTest::newRow("a word") << QByteArray("100 50\nDE 10 10;1 1 5 x 0 5\n");
    QTest::newRow("twice") << QByteArray("100 50\nDE 10 10\nDE 12 10\n");
    QTest::newRow("off the sheet") << QByteArray("100 50\nDE 10 10;1 1 500 0 0 5\n");
    QTest::newRow("an empty line") << QByteArray("100 50\n\nDE 10 10\n");
}

void WorldMapTest::refusesAMalformedMap()
{
    QFETCH(QByteArray, text);
    QVERIFY(!WorldShapes::parse(text));
    QVERIFY(WorldShapes::parse("# A map\n100 50\nDE 10 10;1 1 5 0 0 5;20 20 1 1 2 -3\nMT 9 9\n"));
}

void WorldMapTest::findsTheCountryUnderTheMouse()
{
    WorldMap map;
    map.resize(600, 300);
    map.setValues(values());
    const auto at = [&map](const char* code, const QPointF& away = {}) {
        return map.countryAt(map.middleOf(QString::fromLatin1(code)) + away);
    };
    QCOMPARE(at("DE"), QStringLiteral("DE"));
    // A dot is within reach beyond its outline, over whatever country lies there.
    QCOMPARE(at("SG", {-2, -4}), QStringLiteral("SG"));
    QCOMPARE(at("MT", {4, 0}), QStringLiteral("MT"));
    QCOMPARE(at("MT", {9, 0}), QString());
    // Without traffic there is no dot.
    QCOMPARE(at("BH", {4, 0}), QString());
    QCOMPARE(at("FR"), QStringLiteral("FR"));

    map.show();
    const QSignalSpy clicked(&map, &WorldMap::countryClicked);
    QTest::mouseClick(&map, Qt::LeftButton, {}, map.middleOf(QStringLiteral("US")).toPoint());
    QTest::mousePress(&map, Qt::LeftButton, {}, map.middleOf(QStringLiteral("US")).toPoint());
    QTest::mouseRelease(&map, Qt::LeftButton, {}, map.middleOf(QStringLiteral("DE")).toPoint());
    QCOMPARE(clicked.size(), 1);
    QCOMPARE(clicked.at(0).at(0).toString(), QStringLiteral("US"));
}

void WorldMapTest::stepsByTraffic()
{
    WorldMap map;
    map.setEmptyText(QStringLiteral("Nothing yet"));
    QCOMPARE(map.accessibleDescription(), QStringLiteral("Nothing yet"));
    QTest::keyClick(&map, Qt::Key_Right);
    map.setValues(values());
    const QSignalSpy clicked(&map, &WorldMap::countryClicked);
    Codes order;
    for (int step = 0; step < 6; ++step) {
        QTest::keyClick(&map, Qt::Key_Return);
        order += clicked.constLast().at(0).toString();
        QTest::keyClick(&map, step % 2 == 0 ? Qt::Key_Right : Qt::Key_Down);
    }
    // Neither the local network nor a country without traffic; the last stays.
    QCOMPARE(order.join(u' '), QStringLiteral("DE US SG MY MT MT"));
    QTest::keyClick(&map, Qt::Key_Left);
    QCOMPARE(map.accessibleDescription(), QStringLiteral("Malaysia: 7 KiB down, 0 B up"));
    // The keys stay where they are when the figures change.
    map.setValues({{QStringLiteral("US"), 2, 1}, {QStringLiteral("MY"), 1, 1}});
    QCOMPARE(map.accessibleDescription(), QStringLiteral("Malaysia: 1 B down, 1 B up"));
}

void WorldMapTest::shadesByTraffic()
{
    WorldMap map;
    map.resize(900, 480);
    map.setPalette(Theme::lightPalette());
    const auto lightness = [&map](const char* code) {
        return map.grab()
            .toImage()
            .pixelColor(map.middleOf(QString::fromLatin1(code)).toPoint())
            .lightness();
    };
    map.setValues({{QStringLiteral("US"), GiB, 0}, {QStringLiteral("BR"), KiB, KiB}});
    const int most = lightness("US");
    const int least = lightness("BR");
    QVERIFY2(most < least && least < lightness("AU"),
             qPrintable(QStringLiteral("%1 %2").arg(most).arg(least)));
    map.setValues({{QStringLiteral("BR"), GiB, 0}, {QStringLiteral("US"), KiB, KiB}});
    QCOMPARE(lightness("BR"), most);
}

void WorldMapTest::namesCodes_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("name");
    const auto row = [](const char* code, const char* name) {
        QTest::newRow(code) << QString::fromLatin1(code) << QString::fromLatin1(name);
    };
    row("US", "United States");
    row("XK", "Kosovo");
    row("LAN", "Local network");
    row("??", "Unknown");
    row("QQ", "QQ");
}

void WorldMapTest::namesCodes()
{
    QFETCH(QString, code);
    QTEST(countryName(code), "name");
}

REGISTER_TEST(WorldMapTest);

#include "WorldMapTest.moc"
