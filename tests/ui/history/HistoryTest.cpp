// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"
#include "ui/history/BootRows.h"
#include "ui/history/History.h"
#include "ui/history/HourRows.h"

#include <QTest>

namespace {

constexpr int Work = 2;
const QDate Monday(2025, 3, 3);
const QDate Tuesday(2025, 3, 4);
const HistoryScope EverythingCounted{.first = {}, .last = Tuesday, .profileId = {}};

QDateTime at(const char* text)
{
    return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate);
}

} // namespace

/// What hourly rows mean, with rows and answers written by hand.
class HistoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void countsEachKeyAndClickOnce();
    void groupsTotals();
    void listsCounts();
    void laysClicksOnCells();
    void joinsWhatIsKnownOfApplications();
    void followsApplicationsByDay();
    void listsTraffic();
    void joinsWhatIsKnownOfInterfaces();
    void readsEndsOfSessions_data();
    void readsEndsOfSessions();
    void listsSessionsThatTouchTheDays();
    void tellsThatItCannotRead();

private:
    void exec(const char* statement) const
    {
        QVERIFY(m_database->exec(QString::fromLatin1(statement)));
    }

    std::unique_ptr<History> m_history;
    std::unique_ptr<TestDatabase> m_database;
};

void HistoryTest::init()
{
    m_history.reset();
    m_database.reset();
    m_database = std::make_unique<TestDatabase>();
    m_history = std::make_unique<History>(m_database->database()->getDatabaseFileName());
}

void HistoryTest::countsEachKeyAndClickOnce()
{
    // In each hour and profile another table has the largest count.
    exec("INSERT INTO keypresses VALUES('2025-03-03', 9, 10, 0), ('2025-03-03', 9, 10, 2), "
         "('2025-03-03', 10, 10, 0)");
    exec("INSERT INTO keypress_frequency VALUES('2025-03-03', 9, 65, 4, 0), "
         "('2025-03-03', 9, 66, 5, 0), ('2025-03-03', 9, 65, 12, 2)");
    exec("INSERT INTO mouseclicks VALUES('2025-03-03', 9, 20, 0), ('2025-03-03', 9, 1, 2)");
    exec("INSERT INTO mouseclicks_frequency VALUES('2025-03-03', 9, 0, 10, 0), "
         "('2025-03-03', 9, 1, 11, 0), ('2025-03-03', 9, 0, 2, 2)");
    exec("INSERT INTO input_per_application VALUES('2025-03-03', 10, 'a', 9, 5, 0, 0, 0), "
         "('2025-03-03', 10, 'b', 4, 6, 0, 0, 0)");
    const Totals expected{.keys = 10 + 12 + 13, .clicks = 21 + 2 + 11};
    QCOMPARE(m_history->totals(EverythingCounted), std::optional(expected));
    QCOMPARE(HourRows::keys(m_history->connection(), EverythingCounted),
             std::optional(expected.keys));
    const Totals atWork{.keys = 12, .clicks = 2};
    QCOMPARE(m_history->totals({.first = Monday, .last = Monday, .profileId = Work}),
             std::optional(atWork));
    QCOMPARE(m_history->totals({.first = Tuesday, .last = Tuesday, .profileId = {}}),
             std::optional(Totals{}));
}

void HistoryTest::groupsTotals()
{
    exec("INSERT INTO uptime_hour VALUES('2025-02-24', 0, 1, 0), ('2025-03-02', 23, 2, 0), "
         "('2025-03-03', 0, 4, 0), ('2025-03-03', 9, 0, 2), ('2025-03-05', 0, 8, 0)");
    exec("INSERT INTO mousescrolls VALUES('2025-03-03', 0, 1, 16, 0), ('2025-03-03', 0, 2, 32, 2)");
    exec("INSERT INTO mousedistance VALUES('2025-03-03', 0, 2.5, 0)");
    const Totals last{.scrolls = 48, .inches = 2.5, .uptimeMs = 4};
    const QList<DayTotals> days{
        {{2025, 2, 24}, {.uptimeMs = 1}}, {{2025, 3, 2}, {.uptimeMs = 2}}, {Monday, last}};
    QCOMPARE(m_history->days(EverythingCounted), std::optional(days));
    Totals bothMondays = last;
    bothMondays.uptimeMs = 5;
    const QList<WeekHourTotals> weekHours{{Qt::Monday, 0, bothMondays},
                                          {Qt::Sunday, 23, {.uptimeMs = 2}}};
    QCOMPARE(m_history->weekHours(EverythingCounted), std::optional(weekHours));
    const QList<HourTotals> hours{{0, last}};
    QCOMPARE(m_history->hours({.first = Monday, .last = Monday, .profileId = {}}),
             std::optional(hours));
    QCOMPARE(m_history->firstDay(), std::optional(QDate(2025, 2, 24)));
}

void HistoryTest::listsCounts()
{
    exec("INSERT INTO keypress_frequency VALUES('2025-03-03', 9, 67, 4, 0), "
         "('2025-03-03', 9, 66, 4, 0), ('2025-03-03', 9, 65, 3, 0), ('2025-03-04', 9, 65, 3, 2), "
         "('2025-03-04', 9, 68, 0, 2), ('2025-03-05', 9, 68, 9, 0)");
    exec("INSERT INTO keycombo_frequency VALUES('2025-03-03', 9, 'control,67', 2, 0), "
         "('2025-03-04', 9, 'control,86', 3, 0), ('2025-03-04', 9, 'shift,65', 1, 0)");
    exec("INSERT INTO mouseclicks_frequency VALUES('2025-03-03', 9, 99, 2, 0), "
         "('2025-03-04', 9, 0, 3, 2)");
    exec("INSERT INTO mousescrolls VALUES('2025-03-03', 9, 1, 2, 0), ('2025-03-04', 9, 2, 3, 0), "
         "('2025-03-04', 9, 3, 0, 0)");
    const QList<KeyCount> keys{{65, 6}, {66, 4}, {67, 4}};
    QCOMPARE(m_history->keys(EverythingCounted), std::optional(keys));
    const QList<CombinationCount> combinations{{QStringLiteral("control,86"), 3},
                                               {QStringLiteral("control,67"), 2}};
    QCOMPARE(m_history->combinations(EverythingCounted, 2), std::optional(combinations));
    const QList<ButtonCount> buttons{{0, 3}, {99, 2}};
    QCOMPARE(m_history->buttons(EverythingCounted), std::optional(buttons));
    const QList<ScrollCount> scrolls{{2, 3}, {1, 2}};
    QCOMPARE(m_history->scrolls(EverythingCounted), std::optional(scrolls));
    const QList<KeyCount> generalKeys{{66, 4}, {67, 4}, {65, 3}};
    QCOMPARE(m_history->keys({.first = {}, .last = Tuesday, .profileId = 0}),
             std::optional(generalKeys));
}

void HistoryTest::laysClicksOnCells()
{
    exec("INSERT INTO mousepoints VALUES('2025-03-03', 9, 0.0, 0.0, 0), "
         "('2025-03-03', 9, 0.0104, 0.0185, 0), ('2025-03-03', 9, 0.999, 0.999, 0), "
         "('2025-03-04', 9, -0.001, -1.0, 2), ('2025-03-04', 9, 1, 0.5, 2)");
    const QList<ClickCell> cells{{0, 0, 2}, {-1, -54, 1}, {96, 27, 1}, {95, 53, 1}};
    QCOMPARE(m_history->clickCells(EverythingCounted), std::optional(cells));
}

void HistoryTest::joinsWhatIsKnownOfApplications()
{
    exec("INSERT INTO applications (\"path\", \"name\") VALUES('/a', 'Editor')");
    exec("INSERT INTO input_per_application VALUES('2025-03-03', 9, '/a', 5, 4, 1.5, 3, 0), "
         "('2025-03-04', 9, '/a', 1, 0, 1.5, 0, 2), ('2025-03-04', 9, '', 9, 0, 0, 0, 0)");
    exec("INSERT INTO application_active_hour VALUES('2025-03-03', 9, 60, '/b', 0), "
         "('2025-03-03', 9, 70, '/c', 0)");
    exec("INSERT INTO application_uptime VALUES"
         "('2025-03-05 08:00:00', '2025-03-04 23:30:00', 100, '/a', 0), "
         "('2025-03-05 08:00:00', '2025-03-03 08:00:00', 10, '/a', 2), "
         "('2025-07-01 08:00:00', NULL, 7, '/b', 0), "
         "('2025-03-05 08:00:00', '2025-03-05 08:00:00', 9, '/only-runs', 0)");
    ApplicationTotals a{.path = QStringLiteral("/a"),
                        .name = QStringLiteral("Editor"),
                        .keys = 6,
                        .clicks = 4,
                        .scrolls = 3,
                        .inches = 3,
                        .runningSeconds = 110,
                        .lastUsed = at("2025-03-05T00:30:00")};
    const ApplicationTotals c{
        .path = QStringLiteral("/c"), .name = {}, .frontSeconds = 70, .lastUsed = {}};
    const ApplicationTotals b{.path = QStringLiteral("/b"),
                              .name = {},
                              .frontSeconds = 60,
                              .runningSeconds = 7,
                              .lastUsed = at("2025-07-01T10:00:00")};
    const QList<ApplicationTotals> expected{a, c, b};
    QCOMPARE(m_history->applications(EverythingCounted), std::optional(expected));
    a.keys = 1;
    a.clicks = 0;
    a.scrolls = 0;
    a.inches = 1.5;
    a.runningSeconds = 10;
    a.lastUsed = at("2025-03-03T09:00:00");
    QCOMPARE(m_history->applications({.first = {}, .last = Tuesday, .profileId = Work}),
             std::optional(QList<ApplicationTotals>{a}));
}

void HistoryTest::followsApplicationsByDay()
{
    exec("INSERT INTO input_per_application VALUES('2025-03-03', 9, '/a', 5, 4, 1.5, 3, 0), "
         "('2025-03-03', 10, '/a', 5, 0, 0, 0, 2), ('2025-03-04', 9, '/b', 1, 0, 0, 0, 0)");
    exec("INSERT INTO application_active_hour VALUES('2025-03-03', 9, 60, '/a', 0), "
         "('2025-03-04', 9, 30, '/a', 0)");
    const QList<ApplicationDay> expected{
        {.day = Monday,
         .path = QStringLiteral("/a"),
         .keys = 10,
         .clicks = 4,
         .scrolls = 3,
         .inches = 1.5,
         .frontSeconds = 60},
        {.day = Tuesday, .path = QStringLiteral("/a"), .frontSeconds = 30}};
    const QStringList paths{QStringLiteral("/a"), QStringLiteral("/none"), QStringLiteral("/a")};
    QCOMPARE(m_history->applicationDays(EverythingCounted, paths), std::optional(expected));
}

void HistoryTest::listsTraffic()
{
    exec("INSERT INTO applications (\"path\", \"name\") VALUES('/a', 'Editor')");
    exec("INSERT INTO application_bandwidth VALUES('2025-03-03', 9, 5, 4, '/a', 0), "
         "('2025-03-04', 9, 1, 0, '/a', 2), ('2025-03-04', 9, 2, 9, '/b', 0), "
         "('2025-03-04', 9, 0, 0, '/c', 0), ('2025-03-05', 9, 9, 9, '/c', 0)");
    exec("INSERT INTO country_bandwidth VALUES('2025-03-03', 9, 1, 1, 'DE', 0), "
         "('2025-03-04', 9, 1, 2, 'US', 2), ('2025-03-04', 10, 1, 0, 'DE', 0)");
    exec("INSERT INTO network_protocol_bandwidth VALUES('2025-03-03', 9, 3, 1, 443, 'UDP', 0), "
         "('2025-03-04', 9, 2, 2, 443, 'TCP', 2), ('2025-03-04', 9, 1, 0, 53, 'UDP', 0)");
    const QList<ApplicationTraffic> applications{
        {.path = QStringLiteral("/b"), .name = {}, .traffic = {2, 9}},
        {.path = QStringLiteral("/a"), .name = QStringLiteral("Editor"), .traffic = {6, 4}}};
    QCOMPARE(m_history->applicationTraffic(EverythingCounted), std::optional(applications));
    const QList<CountryTraffic> countries{{QStringLiteral("DE"), {2, 1}},
                                          {QStringLiteral("US"), {1, 2}}};
    QCOMPARE(m_history->countries(EverythingCounted), std::optional(countries));
    const QList<ServiceTraffic> services{{443, QStringLiteral("TCP"), {2, 2}},
                                         {443, QStringLiteral("UDP"), {3, 1}},
                                         {53, QStringLiteral("UDP"), {1, 0}}};
    QCOMPARE(m_history->services(EverythingCounted), std::optional(services));
    QCOMPARE(m_history->services({.first = {}, .last = Tuesday, .profileId = Work}),
             std::optional(services.mid(0, 1)));
    QCOMPARE(m_history->firstDay(), std::optional(Monday));
}

void HistoryTest::joinsWhatIsKnownOfInterfaces()
{
    exec("INSERT INTO network_interfaces VALUES('AA', 'wlan0', 1, '10.0.0.2, fe80::1', "
         "'2025-07-01 08:00:00'), ('CC', 'unused', 0, '', '2025-07-01 08:00:00')");
    exec("INSERT INTO network_interface_bandwidth VALUES('2025-03-03', 9, 5, 4, 'AA'), "
         "('2025-03-03', 23, 1, 0, 'AA'), ('2025-03-03', 9, 100, 0, 'BB'), "
         "('2025-03-04', 9, 7, 0, 'AA')");
    const QList<InterfaceTotals> expected{{.macAddress = QStringLiteral("BB"),
                                           .description = {},
                                           .addresses = {},
                                           .lastSeen = {},
                                           .traffic = {100, 0}},
                                          {.macAddress = QStringLiteral("AA"),
                                           .description = QStringLiteral("wlan0"),
                                           .isWifi = true,
                                           .addresses = QStringLiteral("10.0.0.2, fe80::1"),
                                           .lastSeen = at("2025-07-01T10:00:00"),
                                           .traffic = {13, 4}}};
    const HistoryScope atWork{.first = {}, .last = Tuesday, .profileId = Work};
    QCOMPARE(m_history->interfaces(atWork), std::optional(expected)); // They have no profile.
    const QList<TrafficDay> days{{Monday, {106, 4}}, {Tuesday, {7, 0}}};
    QCOMPARE(m_history->trafficDays(atWork), std::optional(days));
    const QList<TrafficHour> hours{{9, {105, 4}}, {23, {1, 0}}};
    QCOMPARE(m_history->trafficHours({.first = Monday, .last = Monday, .profileId = Work}),
             std::optional(hours));
}

void HistoryTest::readsEndsOfSessions_data()
{
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("end");
    QTest::addColumn<QDateTime>("expected");
    const auto row = [](const char* name, const char* start, const char* end,
                        const char* expected) {
        QTest::newRow(name) << QString::fromLatin1(start) << QString::fromLatin1(end)
                            << at(expected);
    };
    row("extended, winter", "2025-01-03 09:00:00", "2025-01-03 09:00:00", "2025-01-03T09:00:00");
    row("just inserted", "2025-01-03 09:00:00", "2025-01-03 09:01:05", "2025-01-03T09:01:05");
    row("hour after start", "2025-01-03 09:00:00", "2025-01-03 09:01:06", "2025-01-03T10:01:06");
    row("shortly after start", "2025-01-03 09:00:00", "2025-01-03 08:02:00", "2025-01-03T09:02:00");
    row("summer, over midnight", "2025-07-03 23:00:00", "2025-07-03 22:30:00",
        "2025-07-04T00:30:00");
    row("a local time that never was", "2025-03-30 00:00:00", "2025-03-30 02:30:00",
        "2025-03-30T04:30:00");
    row("before the start", "2025-01-03 09:00:00", "2025-01-02 09:00:00", "2025-01-03T09:00:00");
}

void HistoryTest::readsEndsOfSessions()
{
    QFETCH(QString, start);
    QFETCH(QString, end);
    const std::optional<BootSession> session = BootRows::session(start, end);
    QVERIFY(session);
    QTEST(session->end, "expected");
}

void HistoryTest::listsSessionsThatTouchTheDays()
{
    exec("INSERT INTO uptimes VALUES('2025-03-01 08:00:00', '2025-03-02 22:59:59'), "
         "('2025-03-02 08:00:00', '2025-03-02 23:00:00'), "
         "('2025-03-03 08:00:00', '2025-03-03 12:00:00'), "
         "('2025-03-04 00:00:00', '2025-03-04 12:00:00'), ('', '')");
    const auto monday = m_history->boots({.first = Monday, .last = Monday, .profileId = Work});
    QVERIFY(monday);
    QCOMPARE(monday->size(), 2);
    QCOMPARE(monday->at(0).start, at("2025-03-02T08:00:00"));
    QCOMPARE(monday->at(1).end, at("2025-03-03T13:00:00"));
    QCOMPARE(m_history->boots(EverythingCounted)->size(), 4);
}

void HistoryTest::tellsThatItCannotRead()
{
    History none(m_database->directory() + QStringLiteral("/none.db"));
    QVERIFY(!none.totals(EverythingCounted));
    QVERIFY(!none.boots(EverythingCounted));
    exec("DROP TABLE mousescrolls");
    QVERIFY(!m_history->totals(EverythingCounted));
}

REGISTER_TEST(HistoryTest);
#include "HistoryTest.moc"
