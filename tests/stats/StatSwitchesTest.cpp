// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/StatSwitches.h"
#include "support/TestRegistry.h"

#include <QSet>
#include <QTest>

class StatSwitchesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsTheSettings_data();
    void followsTheSettings();
    void allOffWithoutSettings();

private:
    static QString summary(const QSet<QString>& off);
};

/// The statistics that are on, "a" after those that file per application, "h" with a heat map.
QString StatSwitchesTest::summary(const QSet<QString>& off)
{
    QStringList on;
    const auto isOn = [&off](const SettingKey<bool>& key) { return !off.contains(key.name()); };
    for (const StatSwitch& one : StatSwitches::fromSettings(isOn)) {
        if (one.enabled) {
            QString name = one.statistic;
            name.remove(QStringLiteral("Stat"));
            const QString flags =
                (one.perApplication.value_or(false) ? QStringLiteral("a") : QString()) +
                (one.heatmap.value_or(false) ? QStringLiteral("h") : QString());
            on += flags.isEmpty() ? name : name + QLatin1Char(':') + flags;
        }
    }
    on.sort();
    return on.join(QLatin1Char(' '));
}

void StatSwitchesTest::followsTheSettings_data()
{
    QTest::addColumn<QString>("switchedOff");
    QTest::addColumn<QString>("missing");
    QTest::addColumn<QString>("instead");
    const QString clicks = QStringLiteral("MouseClicks:ah");
    const QString mouse = QStringLiteral("MouseClicks:ah MouseDistance:a MouseScrolls:a");
    const QString keys = QStringLiteral("Keypresses:ah");
    QTest::newRow("all on") << QString() << QString() << QString();
    QTest::newRow("input") << QStringLiteral("stats_input_enable") << QString(keys + u' ' + mouse)
                           << QString();
    QTest::newRow("keyboard") << QStringLiteral("stat_keyboard_enable") << keys << QString();
    QTest::newRow("mouse") << QStringLiteral("stat_mouse_enable") << mouse << QString();
    QTest::newRow("keyboard heat map")
        << QStringLiteral("stat_keyboard_heatmap_enable") << keys << QStringLiteral("Keypresses:a");
    QTest::newRow("mouse heat map")
        << QStringLiteral("stat_mouse_heatmap_enable") << clicks << QStringLiteral("MouseClicks:a");
    QTest::newRow("input per application")
        << QStringLiteral("stat_input_applications_enable") << QString(keys + u' ' + mouse)
        << QStringLiteral("Keypresses:h MouseClicks:h MouseDistance MouseScrolls");
    QTest::newRow("uptimes") << QStringLiteral("stats_uptime_enable")
                             << QStringLiteral("ApplicationUptime BootTime Uptime") << QString();
    QTest::newRow("boot") << QStringLiteral("stat_boot_enable") << QStringLiteral("BootTime")
                          << QString();
    QTest::newRow("uptime") << QStringLiteral("stat_uptime_enable") << QStringLiteral("Uptime")
                            << QString();
    QTest::newRow("application uptime") << QStringLiteral("stat_application_enable")
                                        << QStringLiteral("ApplicationUptime") << QString();
    QTest::newRow("network") << QStringLiteral("stats_net_enable")
                             << QStringLiteral("ApplicationBandwidth CountryBandwidth "
                                               "InterfaceBandwidth ProtocolBandwidth")
                             << QString();
    QTest::newRow("interfaces") << QStringLiteral("stat_net_interface_enable")
                                << QStringLiteral("InterfaceBandwidth") << QString();
    QTest::newRow("application bandwidth") << QStringLiteral("stat_net_application_enable")
                                           << QStringLiteral("ApplicationBandwidth") << QString();
    QTest::newRow("protocols") << QStringLiteral("stat_net_protocol_enable")
                               << QStringLiteral("ProtocolBandwidth") << QString();
    QTest::newRow("countries") << QStringLiteral("stat_net_country_enable")
                               << QStringLiteral("CountryBandwidth") << QString();
    QTest::newRow("applications unused, still sent")
        << QStringLiteral("stat_application_enable stat_net_application_enable "
                          "stat_input_applications_enable")
        << QString(QStringLiteral("ApplicationUptime ApplicationBandwidth ") + keys + u' ' + mouse)
        << QStringLiteral("Keypresses:h MouseClicks:h MouseDistance MouseScrolls");
    QTest::newRow("applications neither used nor sent")
        << QStringLiteral("stat_application_enable stat_net_application_enable "
                          "stat_input_applications_enable online_send_applications")
        << QString(QStringLiteral("Applications ApplicationUptime ApplicationBandwidth ") + keys +
                   u' ' + mouse)
        << QStringLiteral("Keypresses:h MouseClicks:h MouseDistance MouseScrolls");
}

void StatSwitchesTest::followsTheSettings()
{
    const QString all = QStringLiteral(
        "ApplicationBandwidth ApplicationUptime Applications BootTime CountryBandwidth "
        "InterfaceBandwidth Keypresses:ah MouseClicks:ah MouseDistance:a MouseScrolls:a "
        "ProtocolBandwidth Uptime");
    QFETCH(QString, switchedOff);
    QFETCH(QString, missing);
    QFETCH(QString, instead);
    QStringList expected = all.split(u' ');
    for (const QString& name : missing.split(u' ', Qt::SkipEmptyParts)) {
        QVERIFY(expected.removeOne(name));
    }
    expected += instead.split(u' ', Qt::SkipEmptyParts);
    expected.sort();
    const QStringList off = switchedOff.split(u' ', Qt::SkipEmptyParts);
    QCOMPARE(summary(QSet<QString>(off.cbegin(), off.cend())), expected.join(u' '));
}

void StatSwitchesTest::allOffWithoutSettings()
{
    const QList<StatSwitch> switches =
        StatSwitches::fromSettings([](const SettingKey<bool>&) { return false; });
    QCOMPARE(switches.size(), 12);
    for (const StatSwitch& one : switches) {
        QVERIFY(!one.enabled && !one.perApplication.value_or(false) &&
                !one.heatmap.value_or(false));
    }
}

REGISTER_TEST(StatSwitchesTest);
#include "StatSwitchesTest.moc"
