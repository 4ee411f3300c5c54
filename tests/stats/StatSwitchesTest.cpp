// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client.h"
#include "stats/AllStats.h"
#include "stats/Collector.h"
#include "stats/LiveRates.h"
#include "stats/Stat.h"
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
    void switchesEveryStatistic();

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
    const auto row = [](const char* switchedOff, const char* missing, const char* instead = "") {
        QTest::newRow(switchedOff) << QString::fromLatin1(switchedOff)
                                   << QString::fromLatin1(missing) << QString::fromLatin1(instead);
    };
    row("", "");
    row("stats_input_enable", "Keypresses:ah MouseClicks:ah MouseDistance:a MouseScrolls:a");
    row("stat_keyboard_enable", "Keypresses:ah");
    row("stat_mouse_enable", "MouseClicks:ah MouseDistance:a MouseScrolls:a");
    row("stat_keyboard_heatmap_enable", "Keypresses:ah", "Keypresses:a");
    row("stat_mouse_heatmap_enable", "MouseClicks:ah", "MouseClicks:a");
    row("stat_input_applications_enable",
        "Keypresses:ah MouseClicks:ah MouseDistance:a MouseScrolls:a",
        "Keypresses:h MouseClicks:h MouseDistance MouseScrolls");
    row("stats_uptime_enable", "ApplicationUptime BootTime Uptime");
    row("stat_boot_enable", "BootTime");
    row("stat_uptime_enable", "Uptime");
    row("stat_application_enable", "ApplicationUptime");
    row("stats_net_enable",
        "ApplicationBandwidth CountryBandwidth InterfaceBandwidth ProtocolBandwidth");
    row("stat_net_interface_enable", "InterfaceBandwidth");
    row("stat_net_application_enable", "ApplicationBandwidth");
    row("stat_net_protocol_enable", "ProtocolBandwidth");
    row("stat_net_country_enable", "CountryBandwidth");
    // The list of applications stays on until nothing wants it.
    row("stats_input_enable stat_application_enable stat_net_application_enable "
        "stat_input_applications_enable",
        "Keypresses:ah MouseClicks:ah MouseDistance:a MouseScrolls:a ApplicationUptime "
        "ApplicationBandwidth");
    row("stats_input_enable stat_application_enable stat_net_application_enable "
        "stat_input_applications_enable online_send_applications",
        "Keypresses:ah MouseClicks:ah MouseDistance:a MouseScrolls:a ApplicationUptime "
        "ApplicationBandwidth Applications");
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
    QStringList expected = all.split(u' ') + instead.split(u' ', Qt::SkipEmptyParts);
    for (const QString& name : missing.split(u' ', Qt::SkipEmptyParts)) {
        QVERIFY(expected.removeOne(name));
    }
    expected.sort();
    const QStringList off = switchedOff.split(u' ');
    QCOMPARE(summary(QSet<QString>(off.cbegin(), off.cend())), expected.join(u' '));
}

void StatSwitchesTest::switchesEveryStatistic()
{
    Client client;
    Collector collector(nullptr);
    LiveRates rates;
    QObject parent;
    AllStats::addTo(collector, &client.system, rates, &parent);
    const auto running = [&parent] {
        QStringList names;
        for (const Stat* stat : parent.findChildren<Stat*>()) {
            if (stat->isEnabled()) {
                names << QString::fromLatin1(stat->metaObject()->className());
            }
        }
        return names.join(u' ');
    };
    QCOMPARE(running(), QString());
    AllStats::followSettings(collector, true);
    QCOMPARE(running(), QStringLiteral("ApplicationsStat KeypressesStat MouseClicksStat "
                                       "BootTimeStat UptimeStat ApplicationUptimeStat "
                                       "InterfaceBandwidthStat ApplicationBandwidthStat "
                                       "ProtocolBandwidthStat CountryBandwidthStat "
                                       "MouseScrollsStat MouseDistanceStat"));
    AllStats::followSettings(collector, false);
    QCOMPARE(running(), QString());
    QCOMPARE(client.system.inputHolders, 0);
    QCOMPARE(client.system.networkHolders, 0);
}

REGISTER_TEST(StatSwitchesTest);
#include "StatSwitchesTest.moc"
