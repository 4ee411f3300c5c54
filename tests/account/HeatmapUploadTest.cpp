// SPDX-License-Identifier: GPL-3.0-or-later
#include "UploadClient.h"
#include "account/HeatmapUpload.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

class HeatmapUploadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sendsEachKind();
    void sendsOnceSomethingGrew();
    void sendsPortionsOfWholeDays();
    void keepsBackWhatIsNotWanted();
};

void HeatmapUploadTest::sendsEachKind()
{
    UploadClient client;
    QVERIFY(fillHeatmaps(client));
    const LogCapture log;
    QVERIFY(client.makesRequests(&Uploads::uploadHeatmaps, QStringList(6, Success)));
    const QStringList expected{
        QStringLiteral(R"("keyboard_heatmap": {"count":3,"day":"%1","hour":9,"key":65},)"
                       R"({"count":4,"day":"%1","hour":9,"key":65})"),
        QStringLiteral(R"("keyboard_heatmap_apps": {"count":7,"day":"%1","hour":9,"key":65,)"
                       R"("path":"/usr/bin/editor"})"),
        QStringLiteral(R"("keycombinations_heatmap": {"combo":"Ctrl+C","count":2,"day":"%1",)"
                       R"("hour":9})"),
        QStringLiteral(R"("keycombinations_heatmap_apps": {"combo":"Ctrl+C","count":2,)"
                       R"("day":"%1","hour":9,"path":"/usr/bin/editor"})"),
        QStringLiteral(R"("buttons_heatmap": {"button":99,"count":1,"day":"%1","hour":9})"),
        QStringLiteral(R"("buttons_heatmap_apps": {"button":99,"count":1,"day":"%1","hour":9,)"
                       R"("path":"/usr/bin/editor"})"),
    };
    for (qsizetype kind = 0; kind < expected.size(); ++kind) {
        const QString field = expected.at(kind).section(QStringLiteral(": "), 0, 0);
        const QString rows = expected.at(kind).section(QStringLiteral(": "), 1);
        QCOMPARE(json(client.sent.at(kind)[QLatin1String("data")]),
                 QStringLiteral(R"({%1:{"from":"%3","rows":[%2],"to":"%3"}})")
                     .arg(field, rows.arg(day()), day()));
    }
    QVERIFY(log.contains(QStringLiteral("Successfully uploaded the keyboard heatmap.")));
    QVERIFY(value(SettingsKeys::OnlineLastHeatmapButtonsApps).isValid());
}

void HeatmapUploadTest::sendsOnceSomethingGrew()
{
    UploadClient client;
    QVERIFY(client.exec("INSERT INTO keypress_frequency VALUES ('TODAY', 9, 65, 3, 0)"));
    const LogCapture log;
    QVERIFY(client.makesRequests(&Uploads::uploadHeatmaps, {Failure}));
    QVERIFY(log.contains(QStringLiteral("Error uploading keyboard heatmap data: ")));
    QVERIFY(!value(SettingsKeys::OnlineLastHeatmapKeyboard).isValid());
    QVERIFY(client.makesRequests(&Uploads::uploadHeatmaps, {Success}));
    QVERIFY(client.makesNoRequest(&Uploads::uploadHeatmaps));
    QVERIFY(client.exec("UPDATE keypress_frequency SET count = 4"));
    QVERIFY(client.makesRequests(&Uploads::uploadHeatmaps, {Success}));
    // A clock that was wrong for a while.
    set(SettingsKeys::OnlineLastHeatmapKeyboard, QDateTime::currentDateTime().addYears(1));
    QVERIFY(client.exec("UPDATE keypress_frequency SET count = 5"));
    QVERIFY(client.makesRequests(&Uploads::uploadHeatmaps, {Success}));
    QVERIFY(value(SettingsKeys::OnlineLastHeatmapKeyboard) <= QDateTime::currentDateTime());
}

void HeatmapUploadTest::sendsPortionsOfWholeDays()
{
    static_assert(HeatmapUpload::RowsAtOnce == 5'000);
    UploadClient client;
    for (const int before : {3, 2, 1}) {
        QVERIFY(client.database.exec(
            QStringLiteral("INSERT INTO keypress_frequency WITH RECURSIVE n(i) AS (SELECT 1 UNION "
                           "ALL SELECT i + 1 FROM n WHERE i < 3000) SELECT '%1', i % 24, i, 1, 0 "
                           "FROM n")
                .arg(day(before))));
    }
    const auto extent = [&client] {
        const QJsonObject heatmap = client.field("keyboard_heatmap").toObject();
        return QStringLiteral("%1 %2 %3")
            .arg(heatmap[QLatin1String("from")].toString(), heatmap[QLatin1String("to")].toString())
            .arg(heatmap[QLatin1String("rows")].toArray().size());
    };
    QVERIFY(client.makesRequests(&Uploads::uploadHeatmaps, {Success}));
    QCOMPARE(extent(), QStringLiteral("%1 %2 6000").arg(day(3), day(2)));
    QVERIFY(client.makesRequests(&Uploads::uploadHeatmaps, {Success}));
    QCOMPARE(extent(), QStringLiteral("%1 %2 3000").arg(day(1), day()));
    QVERIFY(client.makesNoRequest(&Uploads::uploadHeatmaps));
}

void HeatmapUploadTest::keepsBackWhatIsNotWanted()
{
    UploadClient client;
    QVERIFY(fillHeatmaps(client));
    set(SettingsKeys::OnlineSendApplications, false);
    QVERIFY(client.makesRequests(&Uploads::uploadHeatmaps, QStringList(3, Success)));
    for (const QJsonObject& envelope : client.sent) {
        QVERIFY(!json(envelope).contains(QLatin1String("/usr/bin/editor")));
    }
    set(SettingsKeys::OnlineSendHeatmaps, false);
    QVERIFY(client.exec("UPDATE keypress_frequency SET count = 100"));
    QVERIFY(client.makesNoRequest(&Uploads::uploadHeatmaps));
}

REGISTER_TEST(HeatmapUploadTest);
#include "HeatmapUploadTest.moc"
