// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/TableText.h"
#include "ui/network/NetworkTables.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

/// The tables of the network view.
class TrafficModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsRowsInPlace();
    void tellsWhatThePortIsFor();
    void tellsAboutInterfaces();
};

void TrafficModelTest::keepsRowsInPlace()
{
    TrafficModel model(NetworkTables::countryColumns());
    const QAbstractItemModelTester tester(&model);
    const auto country = [](const char* code, qint64 download) {
        return CountryTraffic{QString::fromLatin1(code), {download, 0}};
    };
    model.setRows(NetworkTables::countries({country("DE", 30), country("US", 10)}));
    const QPersistentModelIndex us = model.index(1, 0);
    const QPersistentModelIndex de = model.index(0, 0);
    model.setRows(NetworkTables::countries({country("US", 3'072), country("LAN", 1'024)}));
    QVERIFY(!de.isValid());
    QCOMPARE(us.data(TrafficModel::KeyRole).toString(), QStringLiteral("US"));
    QCOMPARE(TableText::tabbed(model), QStringLiteral("Country\tDownload\tUpload\tShare (%)\n"
                                                      "United States\t3 KiB\t0 B\t75.0\n"
                                                      "Local network\t1 KiB\t0 B\t25.0\n"));
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.setRows(NetworkTables::countries({country("US", 3'072), country("LAN", 1'024)}));
    QVERIFY(changed.isEmpty());
}

void TrafficModelTest::tellsWhatThePortIsFor()
{
    TrafficModel model(NetworkTables::serviceColumns());
    const auto describe = [](int port, Utils::TrafficType type) {
        return port == 53 && type == Utils::TrafficType::Udp ? QStringLiteral("Names") : QString();
    };
    model.setRows(NetworkTables::services(
        {{53, QStringLiteral("UDP"), {1, 2}}, {53, QStringLiteral("TCP"), {3, 4}}}, describe));
    QCOMPARE(TableText::csv(model),
             QStringLiteral("Service,Port,Transport,Download (bytes),Upload (bytes)\r\n"
                            "Names,53,UDP,1,2\r\nUnknown service,53,TCP,3,4\r\n"));
}

void TrafficModelTest::tellsAboutInterfaces()
{
    TrafficModel model(NetworkTables::interfaceColumns());
    model.setRows(NetworkTables::interfaces({{.macAddress = QStringLiteral("aa:0b"),
                                              .description = QStringLiteral("wlan0"),
                                              .isWifi = true,
                                              .addresses = QStringLiteral("10.0.0.2"),
                                              .lastSeen = QDateTime({2026, 3, 10}, {9, 5, 59}),
                                              .traffic = {2'048, 0}},
                                             {.macAddress = QStringLiteral("CC"),
                                              .description = {},
                                              .addresses = {},
                                              .lastSeen = {},
                                              .traffic = {}}}));
    model.setExcluded({QStringLiteral("AA:0B")}); // Addresses were stored in either case.
    const auto cell = [&model](int row, int column, int role = Qt::DisplayRole) {
        return model.index(row, column).data(role).toString();
    };
    QCOMPARE(cell(0, 0), QStringLiteral("wlan0 (not counted)"));
    QCOMPARE(cell(0, 2), QStringLiteral("Wi-Fi"));
    QCOMPARE(cell(0, 4), QStringLiteral("2026-03-10 09:05"));
    QCOMPARE(cell(0, NetworkTables::InterfaceDownload), QStringLiteral("2 KiB"));
    QCOMPARE(cell(0, NetworkTables::InterfaceDownload, Qt::ToolTipRole),
             QStringLiteral("2,048 bytes"));
    QCOMPARE(cell(1, 0), QStringLiteral("CC"));
    QCOMPARE(cell(1, 4), QString());
}

REGISTER_TEST(TrafficModelTest);
#include "TrafficModelTest.moc"
