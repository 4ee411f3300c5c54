// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client.h"
#include "stats/MouseClicksStat.h"
#include "stats/MouseDistanceStat.h"
#include "stats/MouseScrollsStat.h"
#include "support/TestRegistry.h"

#include <QTest>
#include <QTimer>

#include <array>
#include <memory>
#include <utility>

namespace {

using Utils::ScrollDirection;

enum Switch
{
    PerApplication = 1,
    Heatmap = 2,
    Excluded = 4,
};

QDateTime at(int hour)
{
    return {QDate::currentDate(), QTime(hour, 59)};
}

} // namespace

class MouseStatsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void filesTwoBatchesOfClicks_data();
    void filesTwoBatchesOfClicks();
    void startsEachHourAndProfileAtZero();
    void tellsPositionsFromAHeldPointer_data();
    void tellsPositionsFromAHeldPointer();
    void filesPlausibleTravel_data();
    void filesPlausibleTravel();
    void countsAScrollStepPerSecond_data();
    void countsAScrollStepPerSecond();
    void addsTravelAndScrollsOnlyToApplicationsWithARow();
    void countsOnlyWhatHappensWhileOn();

private:
    template <typename T>
    std::unique_ptr<T> make()
    {
        auto stat = std::make_unique<T>(&m_client->system, nullptr);
        stat->setPerApplication(true);
        stat->setEnabled(true);
        return stat;
    }

    void click(MouseClicksStat& stat, const QList<unsigned short>& buttons, int hour = 14)
    {
        m_client->system.clicks = buttons;
        stat.doFrequentUpdate(at(hour), false);
    }

    QString today(const char* columnsAndTable)
    {
        return m_client->rows(
            QStringLiteral("SELECT %1 WHERE day=date('now', 'localtime') ORDER BY 1, 2, 3")
                .arg(QLatin1String(columnsAndTable)));
    }

    const QString m_editor = QStringLiteral("/usr/bin/editor");
    std::unique_ptr<Client> m_client;
};

void MouseStatsTest::init()
{
    m_client = std::make_unique<Client>();
    m_client->system.activeApplication = m_editor;
}

void MouseStatsTest::cleanup()
{
    m_client.reset();
}

void MouseStatsTest::filesTwoBatchesOfClicks_data()
{
    QTest::addColumn<QString>("application");
    QTest::addColumn<int>("switches");
    QTest::addColumn<int>("points");
    QTest::addColumn<QString>("applications");
    QTest::addColumn<QString>("applicationButtons");
    const QString none;
    const QString editor = QStringLiteral("14|/usr/bin/editor|0|8|0");
    const QString buttons = QStringLiteral("14|0|4|/usr/bin/editor|0,14|1|2|/usr/bin/editor|0,"
                                           "14|99|2|/usr/bin/editor|0");
    const int all = PerApplication | Heatmap;
    QTest::newRow("everything") << m_editor << all << 2 << editor << buttons;
    QTest::newRow("excluded") << m_editor << (all | Excluded) << 2 << none << none;
    QTest::newRow("no application in front") << none << all << 2 << none << none;
    QTest::newRow("not per application")
        << m_editor << static_cast<int>(Heatmap) << 2 << none << none;
    QTest::newRow("no heat map") << m_editor << static_cast<int>(PerApplication) << 0 << editor
                                 << none;
}

void MouseStatsTest::filesTwoBatchesOfClicks()
{
    QFETCH(QString, application);
    QFETCH(int, switches);
    FakeSystem& system = m_client->system;
    system.activeApplication = application;
    if ((switches & Excluded) != 0) {
        system.excludedApplications.insert(application);
    }
    const auto stat = make<MouseClicksStat>();
    stat->setPerApplication((switches & PerApplication) != 0);
    stat->setHeatmap((switches & Heatmap) != 0);
    for (int batch = 0; batch < 2; ++batch) {
        system.points = {{0.5, 0.25}};
        click(*stat, {0, 1, 0, 99});
        click(*stat, {});
    }
    QCOMPARE(today("hour, count, profile_id FROM mouseclicks"), QStringLiteral("14|4|0"));
    QCOMPARE(today("hour, button, count, profile_id FROM mouseclicks_frequency"),
             QStringLiteral("14|0|4|0,14|1|2|0,14|99|2|0"));
    QTEST(m_client
              ->value(QStringLiteral("SELECT count(*) FROM mousepoints WHERE hour=14 AND "
                                     "x=0.5 AND y=0.25"))
              .toInt(),
          "points");
    QTEST(today("hour, path, keys, clicks, profile_id FROM input_per_application"), "applications");
    QTEST(today("hour, button, count, path, profile_id FROM mouseclicks_frequency_application"),
          "applicationButtons");
    QCOMPARE(m_client->totals.unzurged().clicks, 8U);
    QFETCH(QString, applications);
    QCOMPARE(m_client->totals.unzurgedPerApplication().value(application).clicks,
             applications.isEmpty() ? 0U : 8U);
}

void MouseStatsTest::startsEachHourAndProfileAtZero()
{
    const auto clicks = make<MouseClicksStat>();
    const auto distance = make<MouseDistanceStat>();
    for (const auto& [hour, profile] : {std::pair{9, 0}, {9, 0}, {10, 0}, {10, 7}, {10, 7}}) {
        clicks->setStatsProfileId(profile);
        distance->setStatsProfileId(profile);
        click(*clicks, {0, 2}, hour);
        m_client->system.distanceInches = 3;
        distance->doFrequentUpdate(at(hour), false);
    }
    QCOMPARE(today("hour, profile_id, count FROM mouseclicks"),
             QStringLiteral("9|0|2,10|0|0,10|7|2"));
    QCOMPARE(today("hour, profile_id, sum(count) FROM mouseclicks_frequency").section(u'|', -1),
             QStringLiteral("10"));
    QCOMPARE(today("hour, profile_id, distance_inches FROM mousedistance"),
             QStringLiteral("9|0|3,10|0|0,10|7|3"));
    QCOMPARE(today("hour, profile_id, distance_inches FROM input_per_application"),
             QStringLiteral("9|0|6,10|0|3,10|7|6"));
}

void MouseStatsTest::tellsPositionsFromAHeldPointer_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<bool>("isPosition"); ///< While a full-screen program is in front.
    const auto shares = [](float x, float y) { return QPointF(x, y); };
    QTest::newRow("elsewhere") << QPointF(0.1, 0.9) << true;
    QTest::newRow("centred across") << QPointF(0.5, 0.2) << false;
    QTest::newRow("centred up and down") << QPointF(0.2, 0.5) << false;
    // As the listener computes them, in single precision.
    QTest::newRow("on the lower bound") << shares(0.45F, 0.2F) << false;
    QTest::newRow("on the upper bound") << shares(0.2F, 0.55F) << false;
    QTest::newRow("below the centre") << QPointF(0.4499, 0.2) << true;
    QTest::newRow("beyond the centre") << QPointF(0.2, 0.5501) << true;
    QTest::newRow("left edge") << QPointF(0, 0.2) << false;
    QTest::newRow("upper edge") << QPointF(0.2, 0) << false;
    QTest::newRow("lower right corner") << QPointF(1, 1) << true;
    QTest::newRow("on a screen to the left") << QPointF(-0.5, -0.25) << true;
}

void MouseStatsTest::tellsPositionsFromAHeldPointer()
{
    QFETCH(QPointF, point);
    QFETCH(bool, isPosition);
    const auto stat = make<MouseClicksStat>();
    const auto pointsStored = [&](bool fullscreen) {
        m_client->system.fullscreen = fullscreen;
        m_client->system.points = {point};
        click(*stat, {0});
        return m_client
            ->value(QStringLiteral("SELECT count(*) FROM mousepoints WHERE x=%1 AND y=%2")
                        .arg(point.x(), 0, 'g', 17)
                        .arg(point.y(), 0, 'g', 17))
            .toInt();
    };
    QCOMPARE(pointsStored(true), isPosition ? 1 : 0);
    QCOMPARE(pointsStored(false), isPosition ? 2 : 1);
    QCOMPARE(today("button, count, 0 FROM mouseclicks_frequency"), QStringLiteral("0|2|0"));
}

void MouseStatsTest::filesPlausibleTravel_data()
{
    QTest::addColumn<float>("inches");
    QTest::addColumn<double>("filed");
    QTest::addColumn<quint64>("unzurged");
    QTest::newRow("none") << 0.0F << 0.0 << Q_UINT64_C(0);
    QTest::newRow("below an inch") << 0.5F << 0.5 << Q_UINT64_C(0);
    QTest::newRow("the most") << 68.0F << 68.0 << Q_UINT64_C(68);
    QTest::newRow("more") << 69.0F << 0.0 << Q_UINT64_C(0);
    QTest::newRow("negative") << -1.0F << 0.0 << Q_UINT64_C(0);
}

void MouseStatsTest::filesPlausibleTravel()
{
    QFETCH(float, inches);
    const auto clicks = make<MouseClicksStat>();
    const auto distance = make<MouseDistanceStat>();
    click(*clicks, {0});
    for (const float taken : {1.0F, inches}) {
        m_client->system.distanceInches = taken;
        distance->doFrequentUpdate(at(14), false);
    }
    QTEST(m_client->value(QStringLiteral("SELECT distance_inches FROM mousedistance")).toDouble(),
          "filed");
    QTEST(m_client->value(QStringLiteral("SELECT distance_inches-1 FROM input_per_application"))
              .toDouble(),
          "filed");
    QTEST(m_client->totals.unzurged().distanceInches - 1, "unzurged");
    QTEST(m_client->totals.unzurgedPerApplication().value(m_editor).distanceInches - 1, "unzurged");
}

void MouseStatsTest::countsAScrollStepPerSecond_data()
{
    QTest::addColumn<qint64>("elapsedMs");
    QTest::addColumn<int>("steps");
    QTest::addColumn<int>("counted");
    QTest::newRow("fast wheel") << Q_INT64_C(3'500) << 20 << 3;
    QTest::newRow("slow wheel") << Q_INT64_C(3'500) << 2 << 2;
    QTest::newRow("within a second") << Q_INT64_C(999) << 5 << 0;
    QTest::newRow("clock set back") << Q_INT64_C(-5'000) << 5 << 0;
    QTest::newRow("after 25 days") << (Q_INT64_C(1) << 31) << 5 << 5;
}

void MouseStatsTest::countsAScrollStepPerSecond()
{
    QFETCH(qint64, elapsedMs);
    QFETCH(int, steps);
    QFETCH(int, counted);
    const auto clicks = make<MouseClicksStat>();
    const auto stat = make<MouseScrollsStat>();
    click(*clicks, {0});
    const auto stored = [this] { return today("direction, count, hour FROM mousescrolls"); };
    stat->doFrequentUpdate(at(14), false);
    QCOMPARE(stored(), QStringLiteral("1|0|14,2|0|14,3|0|14,4|0|14"));

    m_client->system.scrolls = {{ScrollDirection::Down, 20}, {ScrollDirection::Left, 1}};
    stat->doFrequentUpdate(at(14), false);
    QCOMPARE(stored(), QStringLiteral("1|0|14,2|20|14,3|1|14,4|0|14")); // The first is not cut.

    stat->doFrequentUpdate(at(14).addMSecs(elapsedMs / 2), false); // Nothing: starts no interval.
    m_client->system.scrolls = {{ScrollDirection::Up, steps}, {ScrollDirection::Down, steps}};
    stat->doFrequentUpdate(at(14).addMSecs(elapsedMs), false);
    QCOMPARE(today("direction, sum(count), 0 FROM mousescrolls").section(u'|', 1, 1),
             QString::number(21 + 2 * counted));
    QCOMPARE(m_client->totals.unzurged().scrolls, static_cast<quint64>(21 + 2 * counted));
}

void MouseStatsTest::addsTravelAndScrollsOnlyToApplicationsWithARow()
{
    const auto clicks = make<MouseClicksStat>();
    const auto distance = make<MouseDistanceStat>();
    const auto scrolls = make<MouseScrollsStat>();
    const auto moveAndScroll = [&](int second) {
        m_client->system.distanceInches = 2;
        m_client->system.scrolls = {{ScrollDirection::Right, 1}};
        distance->doFrequentUpdate(at(14).addSecs(second), false);
        scrolls->doFrequentUpdate(at(14).addSecs(second), false);
        return today("path, distance_inches, scrolls FROM input_per_application");
    };
    QCOMPARE(moveAndScroll(0), QString());
    click(*clicks, {0});
    QCOMPARE(moveAndScroll(2), QStringLiteral("/usr/bin/editor|2|1"));
    m_client->system.excludedApplications.insert(m_editor);
    QCOMPARE(moveAndScroll(4), QStringLiteral("/usr/bin/editor|2|1"));
    const UnzurgedCounts counts = m_client->totals.unzurgedPerApplication().value(m_editor);
    QCOMPARE(counts.distanceInches, 4U); // Wherever it could be filed.
    QCOMPARE(counts.scrolls, 2U);
    QCOMPARE(m_client->totals.unzurged().distanceInches, 6U);
}

void MouseStatsTest::countsOnlyWhatHappensWhileOn()
{
    FakeSystem& system = m_client->system;
    const auto clicks = make<MouseClicksStat>();
    const auto distance = make<MouseDistanceStat>();
    const auto scrolls = make<MouseScrollsStat>();
    const std::array<Stat*, 3> stats{clicks.get(), distance.get(), scrolls.get()};
    QCOMPARE(system.inputHolders, 3);
    for (Stat* stat : stats) {
        stat->setEnabled(false);
    }
    QCOMPARE(system.inputHolders, 0);
    system.clicks = {0, 0};
    system.points = {{0.1, 0.1}, {0.2, 0.2}};
    system.distanceInches = 5;
    system.scrolls = {{ScrollDirection::Up, 3}, {ScrollDirection::Right, 3}};
    for (Stat* stat : stats) {
        stat->setEnabled(true);
        stat->update();
    }
    // One that is off does not let its quantity pile up, for whom else the device may be read.
    for (Stat* stat : stats) {
        stat->setEnabled(false);
        stat->findChild<QTimer*>()->setInterval(0);
    }
    system.clicks = {0};
    system.points = {{0.1, 0.1}};
    QTRY_VERIFY(system.clicks.isEmpty() && system.points.isEmpty());
    for (Stat* stat : stats) {
        stat->setEnabled(true);
    }
    system.clicks = {0};
    QTest::qWait(20);
    QCOMPARE(system.clicks.size(), 1);
    QCOMPARE(m_client->totals.unzurged(), UnzurgedCounts{});
    QCOMPARE(today("* FROM mousepoints"), QString());
}

REGISTER_TEST(MouseStatsTest);
#include "MouseStatsTest.moc"
