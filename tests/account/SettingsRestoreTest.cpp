// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/SettingsRestore.h"
#include "account/SettingsUpload.h"
#include "profiles/Milestones.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QTest>

namespace {

QVariantMap settings(const QVariantMap& values)
{
    return {{QStringLiteral("settings"), values}};
}

QVariantList oneOf(const QVariantMap& row)
{
    return {QVariant(row)};
}

} // namespace

class SettingsRestoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesOverWhatTheUserChose_data();
    void takesOverWhatTheUserChose();
    void addsRows();
    void survivesAnything_data();
    void survivesAnything();
};

void SettingsRestoreTest::takesOverWhatTheUserChose_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("isTaken");
    const auto row = [](const char* name, bool isTaken) {
        QTest::newRow(name) << QString::fromLatin1(name)
                            << QVariant(QStringLiteral("of another computer")) << isTaken;
    };
    row("theme", true);
    row("stats_net_enable", true);
    row("auto_zurge_time_enabled", true);
    for (const char* name : {"time_series_last_sent",
                             "online_last_heatmap_keyboard",
                             "online_total_keys",
                             "online_rank_keys",
                             "online_userid",
                             "history_stamp",
                             "proxy_enabled",
                             "proxy_password",
                             "proxy_system_enabled",
                             "service_api_url",
                             "portable_mode",
                             "check_for_comp_info_last",
                             "online_backup_last",
                             "settings_last_saved",
                             "work_offline",
                             "client_version",
                             "client_api_http_enable",
                             "client_api_http_allowed_ips",
                             "first_steps_due",
                             "online_linked_computers",
                             "dismissed_website_messages",
                             "of_a_later_version"}) {
        row(name, false);
    }
    QTest::newRow("no text") << QStringLiteral("logo_color")
                             << QVariant(QVariantList{QStringLiteral("x")}) << false;
    QTest::newRow("too long") << QStringLiteral("keyboard_layout")
                              << QVariant(QString(5'000, QLatin1Char('x'))) << false;
}

void SettingsRestoreTest::takesOverWhatTheUserChose()
{
    QFETCH(QString, name);
    QFETCH(QVariant, value);
    QFETCH(bool, isTaken);
    TestDatabase test;
    Milestones milestones;
    SettingsRestore::restore(settings({{name, value}}), *test.database(), milestones);
    test.reopen();
    QCOMPARE(Settings::instance().get(name, {}) == value, isTaken);
    QVERIFY(!isTaken || !SettingsUpload::staysHere(name));
}

void SettingsRestoreTest::addsRows()
{
    const TestDatabase test;
    Milestones milestones;
    const auto milestone = [](const char* name, qint64 amount, int active) {
        return QVariant(QVariantMap{{QStringLiteral("name"), QString::fromLatin1(name)},
                                    {QStringLiteral("stats_type"), QStringLiteral("Keys")},
                                    {QStringLiteral("stats_amount"), amount},
                                    {QStringLiteral("milestone_active"), active},
                                    {QStringLiteral("last_stats_when_triggered"), 777}});
    };
    const QVariantMap kept{
        {QStringLiteral("milestones"),
         QVariantList{milestone("One", 100, 1), milestone("Two", 200, 0), milestone("", 1, 1),
                      milestone("None", 0, 1)}},
        {QStringLiteral("geekwindow_labels"),
         oneOf({{QStringLiteral("id"), 3},
                {QStringLiteral("val"), QStringLiteral("keys")},
                {QStringLiteral("x"), -5},
                {QStringLiteral("y"), 7}})},
        {QStringLiteral("application_ignore"),
         oneOf({{QStringLiteral("path"), QStringLiteral("/usr/bin/secret")}})},
        {QStringLiteral("network_interfaces_ignore"),
         oneOf({{QStringLiteral("mac_address"), QStringLiteral("02:00:00:00:00:01")}})}};
    for (int round = 0; round < 2; ++round) {
        SettingsRestore::restore(kept, *test.database(), milestones);
        QCOMPARE(test.rows(QStringLiteral("SELECT name, stats_amount, milestone_active, "
                                          "last_stats_when_triggered FROM milestones")),
                 QStringLiteral("One|100|1|0,Two|200|0|0"));
        QCOMPARE(test.rows(QStringLiteral("SELECT * FROM geekwindow_labels WHERE id = 3")),
                 QStringLiteral("3|keys|-5|7"));
        QCOMPARE(test.rows(QStringLiteral("SELECT * FROM application_ignore")),
                 QStringLiteral("/usr/bin/secret"));
        QCOMPARE(test.rows(QStringLiteral("SELECT * FROM network_interfaces_ignore")),
                 QStringLiteral("02:00:00:00:00:01"));
    }
}

void SettingsRestoreTest::survivesAnything_data()
{
    QTest::addColumn<QVariant>("part");
    QTest::newRow("nothing") << QVariant();
    QTest::newRow("a text") << QVariant(QStringLiteral("x"));
    QTest::newRow("empty rows") << QVariant(QVariantList{QVariantMap(), QVariant(), 7});
    QTest::newRow("fields of other types")
        << QVariant(oneOf({{QStringLiteral("path"), 7},
                           {QStringLiteral("mac_address"), QVariantList()},
                           {QStringLiteral("id"), QStringLiteral("x")},
                           {QStringLiteral("val"), QVariantMap()},
                           {QStringLiteral("name"), 7},
                           {QStringLiteral("stats_amount"), QStringLiteral("many")}}));
}

void SettingsRestoreTest::survivesAnything()
{
    QFETCH(QVariant, part);
    const TestDatabase test;
    Milestones milestones;
    const QString labels = test.rows(QStringLiteral("SELECT * FROM geekwindow_labels"));
    SettingsRestore::restore({{QStringLiteral("settings"), part},
                              {QStringLiteral("milestones"), part},
                              {QStringLiteral("geekwindow_labels"), part},
                              {QStringLiteral("application_ignore"), part},
                              {QStringLiteral("network_interfaces_ignore"), part}},
                             *test.database(), milestones);
    QCOMPARE(test.rows(QStringLiteral("SELECT * FROM geekwindow_labels")), labels);
    QVERIFY(milestones.list().isEmpty());
    QCOMPARE(test.rows(QStringLiteral("SELECT * FROM application_ignore")), QString());
    QCOMPARE(test.rows(QStringLiteral("SELECT * FROM network_interfaces_ignore")), QString());
}

REGISTER_TEST(SettingsRestoreTest);
#include "SettingsRestoreTest.moc"
