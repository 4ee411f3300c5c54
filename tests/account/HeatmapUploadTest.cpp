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
    void takesNoAnswerForAnotherAccount();
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
    static_assert(HeatmapUpload::RowsAtOnce == 2'000 && HeatmapUpload::PortionsAtOnce == 5);
    UploadClient client;
    // Of each day 1,200 rows, so that two of them make a portion.
    QVERIFY(client.exec("INSERT INTO keypress_frequency WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL "
                        "SELECT i + 1 FROM n WHERE i < 13 * 1200 - 1) SELECT date('TODAY', "
                        "'-' || (i / 1200 + 1) || ' days'), i % 24, i % 1200, 1, 0 FROM n"));
    const auto extents = [&client] {
        QStringList texts;
        for (const QJsonObject& envelope : client.sent) {
            const QJsonObject heatmap = envelope[QLatin1String("data")]
                                            .toObject()[QLatin1String("keyboard_heatmap")]
                                            .toObject();
            texts << QStringLiteral("%1 %2 %3")
                         .arg(heatmap[QLatin1String("from")].toString(),
                              heatmap[QLatin1String("to")].toString())
                         .arg(heatmap[QLatin1String("rows")].toArray().size());
        }
        return texts;
    };
    QVERIFY(client.makesRequests(&Uploads::uploadHeatmaps, QStringList(5, Success)));
    for (int portion = 0; portion < 5; ++portion) {
        const int first = 13 - 2 * portion;
        QCOMPARE(extents().at(portion),
                 QStringLiteral("%1 %2 2400").arg(day(first), day(first - 1)));
    }
    QVERIFY(client.makesRequests(&Uploads::uploadHeatmaps, {Success, Success}));
    QCOMPARE(extents(), QStringList({QStringLiteral("%1 %2 2400").arg(day(3), day(2)),
                                     QStringLiteral("%1 %2 1200").arg(day(1), day())}));
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

void HeatmapUploadTest::takesNoAnswerForAnotherAccount()
{
    UploadClient client;
    QVERIFY(client.exec("INSERT INTO keypress_frequency VALUES ('TODAY', 9, 65, 3, 0)"));
    const auto forget = [](Uploads& uploads) {
        uploads.uploadHeatmaps();
        uploads.forget();
    };
    QVERIFY(client.makesRequests(forget, {Success}));
    QVERIFY(!Settings::instance().has(SettingsKeys::OnlineLastHeatmapKeyboard));
    QVERIFY(client.makesRequests(&Uploads::uploadHeatmaps, {Success}));
    QVERIFY(value(SettingsKeys::OnlineLastHeatmapKeyboard).isValid());
    // The next account has none of what the last one has.
    client.uploads.forget();
    Settings::instance().del(SettingsKeys::OnlineLastHeatmapKeyboard.name());
    QVERIFY(client.makesRequests(&Uploads::uploadHeatmaps, {Success}));
}

REGISTER_TEST(HeatmapUploadTest);
#include "HeatmapUploadTest.moc"
