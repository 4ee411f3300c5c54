// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DefaultSettings.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <thread>
#include <vector>

class SettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void storesEveryDefault();
    void keepsWhatWasSet();
    void reads_data();
    void reads();
    void fallsBackToTheCallersDefault();
    void answersEightThreadsWhileOneWrites();
    void choosesTheDistanceSystem();
};

void SettingsTest::storesEveryDefault()
{
    const auto with = [](const char* keys, const char* value) {
        QStringList rows;
        for (const QString& key : QString::fromLatin1(keys).split(QLatin1Char(' '))) {
            rows << key + QLatin1Char('|') + QLatin1String(value);
        }
        return rows;
    };
    QStringList expected =
        with("stat_keyboard_enable stat_keyboard_heatmap_enable stat_mouse_heatmap_prune_3_months "
             "stat_mouse_enable stat_mouse_heatmap_enable stat_input_applications_enable "
             "stat_net_interface_enable stat_net_application_enable stat_net_protocol_enable "
             "stat_net_country_enable stat_net_uptime_enable stat_uptime_enable stat_boot_enable "
             "stat_application_enable stats_input_enable stats_net_enable stats_uptime_enable "
             "online_send_applications online_send_heatmaps selected_keyboard_heatmap "
             "selected_mouse_heatmap selected_network_heatmap selected_inputhistory_chart "
             "launch_on_start check_for_updates auto_install_updates proxy_system_enabled "
             "trayicon_blink_on_activity mainwindow_open_on_start linux_check_network_permissions "
             "tray_doubleclick_zurge auto_zurge_keys_enabled auto_zurge_uptime_enabled "
             "online_backup_enabled send_bug_reports_and_usage_reports profiles_reset_on_sleep",
             "1") +
        with("stat_net_protocol_record_unknown check_for_updates_include_beta work_offline "
             "windows_run_as_administrator pauze_notifications notify_on_zurge "
             "auto_zurge_clicks_enabled auto_zurge_download_enabled auto_zurge_upload_enabled "
             "client_api_http_enable profiles_change_icon_color profiles_have_changed",
             "0") +
        with("logo_color theme", "auto") + with("client_language", "en") +
        with("auto_zurge_keys_unit auto_zurge_clicks_unit", "10000") +
        with("auto_zurge_download_unit auto_zurge_upload_unit", "10240") +
        with("auto_zurge_time_hour", "11") + with("auto_zurge_uptime_unit", "2") +
        with("client_api_http_port", "3490") + with("client_api_websocket_port", "3489") +
        with("client_api_http_allowed_ips", "127.0.0.1;::1;::ffff:127.0.0.1");
    TestDatabase test;
    const auto stored = [&test](const char* condition) {
        QStringList rows = test.rows(QStringLiteral("SELECT name, replace(value, ',', ';') FROM "
                                                    "settings WHERE ") +
                                     QLatin1String(condition))
                               .split(QLatin1Char(','));
        rows.sort();
        return rows;
    };
    const char* always = "name NOT LIKE '%\\_last' ESCAPE '\\' AND name NOT IN "
                         "('last_application_version_check', 'mouse_distance_system', "
                         "'history_stamp')";
    expected.sort();
    QCOMPARE(stored(always), expected);
    Settings& settings = Settings::instance();
    QCOMPARE(settings.value(SettingsKeys::CheckedForMessagesLast)
                 .daysTo(settings.value(SettingsKeys::OnlineBackupLast)),
             7);

    settings.setValue(SettingsKeys::StatsNetEnable, false);
    test.reopen();
    expected.replaceInStrings(QStringLiteral("stats_net_enable|1"),
                              QStringLiteral("stats_net_enable|0"));
    QCOMPARE(stored(always), expected);
}

void SettingsTest::reads_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QVariant>("expected"); // Its type chooses the key's.
    const auto row = [](const char* name, const QVariant& stored, const QVariant& expected) {
        QTest::newRow(name) << stored << expected;
    };
    const auto text = [](const char* value) { return QVariant(QString::fromLatin1(value)); };
    row("bool 1", 1, true);
    row("bool text 0", text("0"), false);
    row("bool text true", text("true"), true);
    row("bool text False", text("False"), false);
    row("bool nonsense", text("maybe"), true);
    row("int", text("3490"), 3490);
    row("int from long text", text("99999999999"), 7);
    row("int nonsense", text("many"), 7);
    row("wide", text("99999999999"), Q_INT64_C(99999999999));
    row("double", text("12.5"), 12.5);
    row("text", text("ä, b"), text("ä, b"));
    const QDateTime time(QDate(2016, 3, 27), QTime(1, 30, 15));
    row("time, ISO", text("2016-03-27T01:30:15"), time);
    row("time, ISO with milliseconds", text("2016-03-27T01:30:15.250"), time.addMSecs(250));
    row("time, SQLite", text("2016-03-27 01:30:15"), time);
    row("time, SQLite with milliseconds", text("2016-03-27 01:30:15.250"), time.addMSecs(250));
    row("time, UTC", text("2016-03-27T00:30:15Z"), time.toUTC());
    row("time, seconds", text("1459038615"), time);
    row("time, a day", text("2016-03-27"), QDate(2016, 3, 27).startOfDay());
    row("time, empty", text(""), QDateTime());
}

void SettingsTest::reads()
{
    QFETCH(QVariant, stored);
    QFETCH(QVariant, expected);
    TestDatabase test;
    const QString name = QStringLiteral("a_key");
    Settings& settings = Settings::instance();
    settings.set(name, stored);
    // Once as it was set in this run, once as the next run loads it.
    for (int run = 0; run < 2; ++run) {
        switch (expected.typeId()) {
        case QMetaType::Bool:
            QCOMPARE(settings.value(SettingKey<bool>(name, true)), expected.toBool());
            break;
        case QMetaType::Int:
            QCOMPARE(settings.value(SettingKey<int>(name, 7)), expected.toInt());
            break;
        case QMetaType::LongLong:
            QCOMPARE(settings.value(SettingKey<qint64>(name)), expected.toLongLong());
            break;
        case QMetaType::Double:
            QCOMPARE(settings.value(SettingKey<double>(name)), expected.toDouble());
            break;
        case QMetaType::QDateTime:
            QCOMPARE(settings.value(SettingKey<QDateTime>(name)), expected.toDateTime());
            break;
        default:
            QCOMPARE(settings.value(SettingKey<QString>(name)), expected.toString());
        }
        test.reopen();
    }
}

void SettingsTest::fallsBackToTheCallersDefault()
{
    const TestDatabase test;
    Settings& settings = Settings::instance();
    settings.del(SettingsKeys::ClientApiHttpPort.name());
    QVERIFY(!settings.has(SettingsKeys::ClientApiHttpPort));
    QCOMPARE(settings.get(SettingsKeys::ClientApiHttpPort.name(), 5), QVariant(5));
    // A row that another connection wrote is found as well.
    test.exec(
        QStringLiteral("INSERT INTO settings (name, value) VALUES ('client_api_http_port', 9)"));
    QCOMPARE(settings.value(SettingsKeys::ClientApiHttpPort), 9);
    QVERIFY(settings.has(SettingsKeys::ClientApiHttpPort));
}

void SettingsTest::keepsWhatWasSet()
{
    TestDatabase test;
    Settings& settings = Settings::instance();
    const QDateTime time = QDateTime::currentDateTime();
    const QByteArray bytes("\x01\x00\xff", 3);
    settings.setValue(SettingsKeys::TimeSeriesLastSent, time);
    settings.set(SettingsKeys::OnlineUserid.name(), 1234567890123L);
    settings.setDouble(SettingsKeys::OnlineTotalDistanceMiles.name(), 0.1);
    settings.setValue(SettingsKeys::GeekWindowGeometry, bytes);
    settings.setValue(SettingsKeys::ProxyUser, QString());
    QCOMPARE(settings.get(SettingsKeys::OnlineUserid.name(), {}),
             QVariant(QStringLiteral("1234567890123")));
    test.reopen();
    QCOMPARE(settings.value(SettingsKeys::TimeSeriesLastSent), time);
    QCOMPARE(settings.value(SettingsKeys::OnlineUserid), Q_INT64_C(1234567890123));
    QCOMPARE(settings.value(SettingsKeys::OnlineTotalDistanceMiles), 0.1);
    QCOMPARE(settings.value(SettingsKeys::GeekWindowGeometry), bytes);
    QVERIFY(settings.has(SettingsKeys::ProxyUser));

    // Also where it could not be written, for this run.
    test.exec(QStringLiteral("DROP TABLE settings"));
    QVERIFY(!settings.setValue(SettingsKeys::Theme, QStringLiteral("dark")));
    QCOMPARE(settings.value(SettingsKeys::Theme), QStringLiteral("dark"));
}

void SettingsTest::answersEightThreadsWhileOneWrites()
{
    const TestDatabase test;
    Settings& settings = Settings::instance();
    std::atomic<bool> stop = false;
    std::atomic<int> wrong = 0;
    std::vector<std::jthread> readers;
    constexpr int threads = 8;
    readers.reserve(threads);
    for (int i = 0; i < threads; ++i) {
        readers.emplace_back([&] {
            while (!stop) {
                const int port = settings.value(SettingsKeys::ClientApiHttpPort);
                wrong += port < 3490 || port > 3790 ? 1 : 0;
                wrong += settings.has(SettingsKeys::ProxyHostname) ? 1 : 0;
            }
        });
    }
    for (int port = 3490; port <= 3790; ++port) {
        settings.setValue(SettingsKeys::ClientApiHttpPort, port);
        settings.del(SettingsKeys::ProxyHostname.name());
    }
    stop = true;
    readers.clear();
    QCOMPARE(wrong.load(), 0);
}

void SettingsTest::choosesTheDistanceSystem()
{
    QCOMPARE(DefaultSettings::mouseDistanceSystem(QLocale::Myanmar), QStringLiteral("imperial"));
    QCOMPARE(DefaultSettings::mouseDistanceSystem(QLocale::Canada), QStringLiteral("metric"));
}

REGISTER_TEST(SettingsTest);
#include "SettingsTest.moc"
