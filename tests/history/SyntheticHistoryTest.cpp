// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/SyntheticHistory.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QCryptographicHash>
#include <QTest>

#include <array>

namespace {

const QDate LastDay(2024, 7, 15);
constexpr int Days = 400;

SyntheticHistory::Plan plan(quint64 seed, int days)
{
    return {LastDay.addDays(1 - days), QDateTime(LastDay, QTime(15, 20)), seed};
}

void writeHistory(const QString& directory, const SyntheticHistory::Plan& plan)
{
    SyntheticHistory::write(directory, plan, [](double) {});
}

/// Every table with its schema and, for tables, a digest of its rows.
QStringList digests(const QString& directory)
{
    TestPrompts prompts;
    Database database(directory, prompts);
    DSqlQuery tables(&database,
                     QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"
                                    " ORDER BY name"),
                     true);
    QStringList digests;
    while (tables.next()) {
        const QString table = tables.value(0).toString();
        // No two databases bear one stamp.
        const QString some = table == QStringLiteral("settings")
                                 ? QStringLiteral(" WHERE name <> 'history_stamp'")
                                 : QString();
        DSqlQuery rows(&database, QStringLiteral("SELECT * FROM ") + table + some, true);
        QCryptographicHash hash(QCryptographicHash::Sha256);
        while (rows.next()) {
            for (int i = 0; i < rows.record().count(); ++i) {
                hash.addData(rows.value(i).toByteArray() + '|');
            }
        }
        digests << table + QLatin1Char(' ') + QString::fromLatin1(hash.result().toHex());
    }
    return digests;
}

/// What breaks a rule that the client's own writing keeps, or misses what a history needs: nothing,
/// or no rows, where all is well.
struct Rule
{
    const char* name;
    const char* brokenBy; ///< What follows "SELECT COUNT(*) FROM".
};

constexpr std::array Rules{
    Rule{"the last hour has keys",
         "(SELECT 1) WHERE NOT EXISTS (SELECT 1 FROM keypress_frequency WHERE "
         "day = '2024-07-15' AND hour = 15)"},
    // The first batch of an hour is no part of its total, and is at most five seconds long.
    Rule{"keys of an hour are above their total",
         "keypresses k WHERE (SELECT SUM(keys) FROM input_per_application i WHERE "
         "i.day = k.day AND i.hour = k.hour AND i.profile_id = k.profile_id) - "
         "count NOT BETWEEN 1 AND 40"},
    Rule{"keys by application add up to the keys",
         "keypress_frequency k WHERE count IS NOT (SELECT SUM(count) FROM "
         "keypress_frequency_application a WHERE a.day = k.day AND a.hour = k.hour "
         "AND a.\"key\" = k.\"key\" AND a.profile_id = k.profile_id)"},
    Rule{"unknown keys have no row", "keypress_frequency WHERE \"key\" = 33554431"},
    Rule{"every hour has all directions",
         "(SELECT 1 FROM mousescrolls GROUP BY day, hour, profile_id HAVING "
         "group_concat(direction) IS NOT '1,2,3,4')"},
    Rule{"points and buttons are pruned", "(SELECT day FROM mousepoints UNION ALL SELECT day FROM "
                                          "mouseclicks_frequency) WHERE day < '2024-04-15'"},
    Rule{"points lie on two screens side by side",
         "mousepoints WHERE x < -1 OR x >= 1 OR y < 0 OR y >= 1 OR "
         "typeof(x) <> 'real'"},
    Rule{"some points lie on each screen", "(SELECT 1) WHERE (SELECT COUNT(DISTINCT x >= 0) FROM "
                                           "mousepoints) <> 2"},
    Rule{"buttons are stored ones",
         "mouseclicks_frequency_application WHERE button NOT IN (0, 1, 2, 99)"},
    Rule{"travel is a real number", "mousedistance WHERE distance_inches < 0 OR "
                                    "typeof(distance_inches) <> 'real'"},
    Rule{"nothing is up for more than an hour an hour",
         "(SELECT SUM(msec_active) AS ms FROM uptime_hour GROUP BY day, hour) "
         "WHERE ms > 3600000"},
    Rule{"nothing is in front while the computer is off",
         "(SELECT day, hour, profile_id, SUM(seconds_active) AS s FROM "
         "application_active_hour GROUP BY day, hour, profile_id) a "
         "WHERE s * 1000 > (SELECT msec_active + 1000 FROM uptime_hour u WHERE "
         "u.day = a.day AND u.hour = a.hour AND u.profile_id = a.profile_id)"},
    Rule{"every application has a name",
         "(SELECT path FROM input_per_application UNION SELECT path FROM "
         "application_uptime) WHERE path NOT IN (SELECT path FROM applications "
         "WHERE name <> '')"},
    Rule{"excluded applications have no rows",
         "input_per_application WHERE path IN (SELECT path FROM "
         "application_ignore)"},
    Rule{"every profile is known",
         "keypresses WHERE profile_id NOT IN (SELECT 0 UNION SELECT id FROM "
         "profiles)"},
    Rule{"one profile is active, and all are used",
         "(SELECT 1) WHERE (SELECT COUNT(*) FROM profiles WHERE active) <> 1 OR "
         "(SELECT COUNT(DISTINCT profile_id) FROM keypresses) <> 4"},
    Rule{"traffic of countries and ports is that of the cards, at most",
         "(SELECT 1) WHERE (SELECT SUM(download) FROM network_interface_bandwidth) "
         "< max((SELECT SUM(download) FROM country_bandwidth), (SELECT "
         "SUM(download) FROM network_protocol_bandwidth), (SELECT SUM(download) "
         "FROM application_bandwidth))"},
    // As the client does: a boot in local time, its end in UTC. The tests run two hours before it.
    Rule{"boots end after they begin", "uptimes WHERE datetime(end_time, '+2 hours') <= boot_time"},
    Rule{"days off are days off", "(SELECT COUNT(DISTINCT day) AS days FROM uptime_hour) WHERE "
                                  "days NOT BETWEEN 280 AND 390"},
    Rule{"weekdays see more keys than weekends",
         "(SELECT 1) WHERE (SELECT SUM(count) FROM keypresses WHERE "
         "strftime('%w', day) IN ('0', '6')) * 2 > (SELECT SUM(count) FROM "
         "keypresses WHERE strftime('%w', day) NOT IN ('0', '6'))"},
    Rule{"E is typed most of all letters",
         "(SELECT \"key\" AS letter FROM keypress_frequency WHERE \"key\" BETWEEN "
         "65 AND 90 GROUP BY 1 ORDER BY SUM(count) DESC LIMIT 1) WHERE "
         "letter <> 69"},
};

} // namespace

class SyntheticHistoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void isTheSameForTheSameSeed();
    void hasTheSchemaOfTheClient();
    void fillsTables_data();
    void fillsTables();
    void followsTheRules_data();
    void followsTheRules();
    void overwritesNothing();

private:
    QString value(const QString& query);

    QTemporaryDir m_directory{fastTemporaryDirectory()};
    TestPrompts m_prompts;
    std::unique_ptr<Database> m_database;
};

void SyntheticHistoryTest::initTestCase()
{
    writeHistory(m_directory.path(), plan(1, Days));
}

QString SyntheticHistoryTest::value(const QString& query)
{
    if (!m_database) {
        m_database = std::make_unique<Database>(m_directory.path(), m_prompts);
    }
    DSqlQuery select(m_database.get(), query, true);
    return select.next() ? select.value(0).toString() : QString();
}

void SyntheticHistoryTest::isTheSameForTheSameSeed()
{
    constexpr int days = 40;
    QList<QStringList> contents;
    for (const quint64 seed : {7ULL, 7ULL, 8ULL}) {
        const QTemporaryDir directory(fastTemporaryDirectory());
        writeHistory(directory.path(), plan(seed, days));
        contents << digests(directory.path());
    }
    QCOMPARE(contents[0], contents[1]);
    QVERIFY(contents[0] != contents[2]);
}

void SyntheticHistoryTest::hasTheSchemaOfTheClient()
{
    const QString schema = QStringLiteral(
        "SELECT group_concat(sql, char(10)) FROM (SELECT sql FROM sqlite_master ORDER BY name)");
    const QString version = QStringLiteral("PRAGMA user_version");
    const QString made = value(schema);
    const QString madeVersion = value(version);
    m_database.reset();
    const TestDatabase fresh;
    QCOMPARE(made, fresh.value(schema).toString());
    QCOMPARE(madeVersion, fresh.value(version).toString());
}

void SyntheticHistoryTest::fillsTables_data()
{
    QTest::addColumn<int>("atLeast");
    for (const char* table : {"keypresses",
                              "keypress_frequency",
                              "keypress_frequency_application",
                              "keycombo_frequency",
                              "keycombo_frequency_application",
                              "mouseclicks",
                              "mousepoints",
                              "mouseclicks_frequency",
                              "mouseclicks_frequency_application",
                              "mousescrolls",
                              "mousedistance",
                              "input_per_application",
                              "uptimes",
                              "uptime_hour",
                              "application_uptime",
                              "application_active_hour",
                              "network_interface_bandwidth",
                              "application_bandwidth",
                              "country_bandwidth",
                              "network_protocol_bandwidth"}) {
        QTest::newRow(table) << 100;
    }
    QTest::newRow("applications") << 30;
    for (const char* table :
         {"profiles", "settings", "unzurged_stats", "pending_applications_stats",
          "application_ignore", "network_interfaces", "network_interfaces_ignore", "milestones",
          "milestones_log", "last_update_time"}) {
        QTest::newRow(table) << 1;
    }
}

void SyntheticHistoryTest::fillsTables()
{
    QFETCH(const int, atLeast);
    const QString rows =
        value(QStringLiteral("SELECT COUNT(*) FROM ") + QLatin1String(QTest::currentDataTag()));
    QVERIFY2(rows.toInt() >= atLeast, qPrintable(rows));
}

void SyntheticHistoryTest::followsTheRules_data()
{
    QTest::addColumn<QString>("broken");
    for (const char* table : {"keypresses", "mouseclicks", "mousescrolls", "mousedistance",
                              "uptime_hour", "input_per_application", "application_active_hour",
                              "network_interface_bandwidth", "country_bandwidth", "mousepoints"}) {
        QTest::addRow("hours of %s", table)
            << QStringLiteral("SELECT COUNT(*) FROM %1 WHERE hour NOT BETWEEN 0 AND 23 OR "
                              "date(day) IS NOT day OR day > '2024-07-15' OR "
                              "(day = '2024-07-15' AND hour > 15)")
                   .arg(QLatin1String(table));
    }
    for (const Rule& rule : Rules) {
        QTest::newRow(rule.name) << QStringLiteral("SELECT COUNT(*) FROM ") +
                                        QLatin1String(rule.brokenBy);
    }
}

void SyntheticHistoryTest::followsTheRules()
{
    QFETCH(const QString, broken);
    QCOMPARE(value(broken), QStringLiteral("0"));
}

void SyntheticHistoryTest::overwritesNothing()
{
    const QString keys = value(QStringLiteral("SELECT SUM(count) FROM keypresses"));
    m_database.reset();
    QVERIFY_THROWS_EXCEPTION(HistoryError, writeHistory(m_directory.path(), plan(2, 2)));
    QCOMPARE(value(QStringLiteral("SELECT SUM(count) FROM keypresses")), keys);
}

REGISTER_TEST(SyntheticHistoryTest);

#include "SyntheticHistoryTest.moc"
