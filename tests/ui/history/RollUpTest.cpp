// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Format.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"
#include "ui/history/History.h"
#include "ui/history/RollUp.h"

#include <QRandomGenerator>
#include <QTest>

#include <cmath>

namespace {

constexpr int DayCount = 130; ///< Over whole months, and days on end without counts.
constexpr quint32 Seed = 20250304;
const QDate Today(2025, 3, 4);
const QDate FirstDay = Today.addDays(-DayCount + 1);
const HistoryScope All{.first = {}, .last = Today, .profileId = {}};

/// Of all days, before any of them was summed.
constexpr double ShareAtFirst =
    static_cast<double>(RollUpCoverage::ReadAlong + RollUp::OpenDays) / DayCount;

using Damage = std::function<void(QFile& file)>;

/// Exact but for travel, whose sums depend on the order of adding.
bool isSameLength(double left, double right)
{
    return std::abs(left - right) <= 1e-9 * std::max(std::abs(left), std::abs(right));
}

bool isSame(const Totals& left, const Totals& right)
{
    Totals exact = left;
    exact.inches = right.inches;
    return exact == right && isSameLength(left.inches, right.inches);
}

template <typename Entry>
bool isSame(const Entry& left, const Entry& right)
{
    if constexpr (requires { left.totals; }) {
        Entry exact = left;
        exact.totals = right.totals;
        return exact == right && isSame(left.totals, right.totals);
    } else if constexpr (requires { left.inches; }) {
        Entry exact = left;
        exact.inches = right.inches;
        return exact == right && isSameLength(left.inches, right.inches);
    } else {
        return left == right;
    }
}

template <typename Entry>
bool isSame(const QList<Entry>& left, const QList<Entry>& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const Entry& a, const Entry& b) { return isSame(a, b); });
}

template <typename Answer>
bool isSame(const std::optional<Answer>& left, const std::optional<Answer>& right)
{
    return left && right && isSame(*left, *right);
}

/// The first question that two histories answer differently; empty where there is none.
QString difference(History& left, History& right, const HistoryScope& scope)
{
    const QStringList paths{QStringLiteral("/usr/bin/app1"), QStringLiteral("/usr/bin/app4")};
    constexpr int limit = 5;
    const std::pair<const char*, bool> questions[] = {
        {"totals", isSame(left.totals(scope), right.totals(scope))},
        {"days", isSame(left.days(scope), right.days(scope))},
        {"hours", isSame(left.hours(scope), right.hours(scope))},
        {"weekHours", isSame(left.weekHours(scope), right.weekHours(scope))},
        {"keys", isSame(left.keys(scope), right.keys(scope))},
        {"combinations", isSame(left.combinations(scope, limit), right.combinations(scope, limit))},
        {"buttons", isSame(left.buttons(scope), right.buttons(scope))},
        {"scrolls", isSame(left.scrolls(scope), right.scrolls(scope))},
        {"clickCells", isSame(left.clickCells(scope), right.clickCells(scope))},
        {"applications", isSame(left.applications(scope), right.applications(scope))},
        {"applicationDays",
         isSame(left.applicationDays(scope, paths), right.applicationDays(scope, paths))},
        {"trafficDays", isSame(left.trafficDays(scope), right.trafficDays(scope))},
        {"interfaces", isSame(left.interfaces(scope), right.interfaces(scope))},
        {"applicationTraffic",
         isSame(left.applicationTraffic(scope), right.applicationTraffic(scope))},
        {"countries", isSame(left.countries(scope), right.countries(scope))},
        {"services", isSame(left.services(scope), right.services(scope))},
        {"boots", isSame(left.boots(scope), right.boots(scope))},
        {"firstDay", left.firstDay() == right.firstDay()},
    };
    for (const auto& [name, isEqual] : questions) {
        if (!isEqual) {
            return QLatin1String(name) + QStringLiteral(" of ") + Format::isoDay(scope.first) +
                   QStringLiteral(" to ") + Format::isoDay(scope.last);
        }
    }
    return {};
}

/// Enough to notice that something is missing, or there twice.
QList<HistoryScope> someScopes()
{
    return {{.first = {}, .last = Today, .profileId = {}},
            {.first = {2024, 12, 31}, .last = {2025, 2, 1}, .profileId = 0}};
}

QList<HistoryScope> manyScopes()
{
    constexpr int everywhere = 2;
    QRandomGenerator random(Seed);
    QList<HistoryScope> scopes = someScopes();
    scopes.append({.first = {}, .last = Today, .profileId = 0});
    scopes.append({.first = Today.addDays(-300), .last = Today.addDays(30), .profileId = 2});
    scopes.append({.first = {2025, 1, 1}, .last = {2025, 1, 31}, .profileId = {}});
    scopes.append({.first = Today, .last = Today, .profileId = {}});
    for (int i = 0; i < everywhere; ++i) {
        const QDate first = FirstDay.addDays(random.bounded(DayCount));
        scopes.append(
            {.first = first, .last = first.addDays(random.bounded(DayCount / 2)), .profileId = {}});
    }
    return scopes;
}

} // namespace

Q_DECLARE_METATYPE(Damage)

/// The sums of days against the hourly rows that they are made from.
class RollUpTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void answersAsTheHourlyRowsDo();
    void showsHowMuchIsThere();
    void keepsItsFile();
    void sumsDaysThatAreOver();
    void forgetsDaysThatAreNotOver();
    void forgetsWhatWasPruned();
    void followsTheStamp();
    void noticesAnotherFile_data();
    void noticesAnotherFile();
    void replacesADamagedFile_data();
    void replacesADamagedFile();
    void worksWithoutAFile();
    void holdsUpNoWriter();

private:
    QString file() const { return m_database->database()->getDatabaseFileName(); }

    QString rollUpFile() const
    {
        return m_database->directory() + QLatin1Char('/') + RollUp::FileName;
    }

    void open();
    void fill();
    void fillDay(const QDate& date, QRandomGenerator& random);
    void fillTraffic(const QString& day, int hour, int profile, QRandomGenerator& random);
    void insert(const QString& table, const QVariantList& values);
    void prepareAll();

    double share(const HistoryScope& scope);

    void exec(const char* statement) const
    {
        QVERIFY(m_database->exec(QString::fromLatin1(statement)));
    }

    /// The first difference to the hourly rows over these scopes.
    QString difference(const QList<HistoryScope>& scopes = someScopes());

    std::unique_ptr<TestDatabase> m_database;
    std::map<QString, DSqlQuery> m_inserts; ///< By their tables, while the database is filled.
    std::unique_ptr<History> m_history;
    QDate m_today;
};

void RollUpTest::init()
{
    m_history.reset();
    m_database.reset();
    m_database = std::make_unique<TestDatabase>();
    m_today = Today;
    fill();
    open();
}

void RollUpTest::open()
{
    m_history.reset();
    m_history =
        std::make_unique<History>(file(), History::RollUps::Kept, [this] { return m_today; });
}

void RollUpTest::prepareAll()
{
    m_history->totals({.first = Today, .last = Today, .profileId = {}});
    while (m_history->prepareMore()) {
    }
}

void RollUpTest::insert(const QString& table, const QVariantList& values)
{
    DSqlQuery& query = m_inserts.try_emplace(table, m_database->database()).first->second;
    if (query.lastQuery().isEmpty()) {
        query.prepare(QStringLiteral("INSERT OR REPLACE INTO %1 VALUES (%2?)")
                          .arg(table, QStringLiteral("?, ").repeated(values.size() - 1)));
    }
    for (const QVariant& value : values) {
        query.addBindValue(value);
    }
    QVERIFY(query.exec());
}

void RollUpTest::fill()
{
    QRandomGenerator random(Seed);
    m_database->exec(QStringLiteral("BEGIN"));
    m_database->exec(QStringLiteral("DELETE FROM keypresses"));
    for (QDate day = FirstDay; day <= Today.addDays(1); day = day.addDays(1)) {
        const bool isGap = random.bounded(8) == 0 || (day.month() == 11 && day.day() > 5);
        if (!isGap || day == FirstDay || day >= Today.addDays(-1)) {
            fillDay(day, random);
        }
    }
    m_inserts.clear();
    m_database->exec(QStringLiteral("COMMIT"));
}

void RollUpTest::fillDay(const QDate& date, QRandomGenerator& random)
{
    const QString day = Format::isoDay(date);
    const auto some = [&random] { return random.bounded(50); };
    const auto path = [&random] {
        return random.bounded(9) == 0 ? QStringLiteral("")
                                      : QStringLiteral("/usr/bin/app%1").arg(random.bounded(6));
    };
    insert(QStringLiteral("uptimes"),
           {day + QStringLiteral(" 08:00:00"), day + QStringLiteral(" 18:00:00")});
    for (int i = 0; i < 3; ++i) {
        const int hour = random.bounded(24);
        const int profile = random.bounded(2) * 2;
        insert(QStringLiteral("keypresses"), {day, hour, some(), profile});
        insert(QStringLiteral("mouseclicks"), {day, hour, some(), profile});
        insert(QStringLiteral("mousedistance"),
               {day, hour, random.generateDouble() * 100, profile});
        insert(QStringLiteral("uptime_hour"), {day, hour, some() * 1000, profile});
        insert(QStringLiteral("application_uptime"),
               {day + QStringLiteral(" 09:00:00"), day + QStringLiteral(" 08:30:00"), some(),
                path(), profile});
        for (int j = 0; j < 2; ++j) {
            insert(QStringLiteral("keypress_frequency"),
                   {day, hour, 60 + random.bounded(30), some(), profile});
            insert(QStringLiteral("keycombo_frequency"),
                   {day, hour, QStringLiteral("control,%1").arg(60 + random.bounded(9)), some(),
                    profile});
            insert(QStringLiteral("mouseclicks_frequency"),
                   {day, hour, random.bounded(3), some(), profile});
            insert(QStringLiteral("mousepoints"), {day, hour, random.generateDouble() * 1.5 - 0.5,
                                                   random.generateDouble(), profile});
            insert(QStringLiteral("mousescrolls"),
                   {day, hour, 1 + random.bounded(4), some(), profile});
            insert(
                QStringLiteral("input_per_application"),
                {day, hour, path(), some(), some(), random.generateDouble() * 50, some(), profile});
            insert(QStringLiteral("application_active_hour"), {day, hour, some(), path(), profile});
        }
        fillTraffic(day, hour, profile, random);
    }
}

void RollUpTest::fillTraffic(const QString& day, int hour, int profile, QRandomGenerator& random)
{
    const auto named = [&random](const QString& name) { return name.arg(random.bounded(4)); };
    const auto some = [&random] { return random.bounded(9) == 0 ? 0 : random.bounded(5'000); };
    insert(QStringLiteral("network_interface_bandwidth"),
           {day, hour, some(), some(), named(QStringLiteral("02:00:00:00:00:0%1"))});
    insert(QStringLiteral("application_bandwidth"),
           {day, hour, some(), some(), named(QStringLiteral("/usr/bin/app%1")), profile});
    insert(QStringLiteral("country_bandwidth"),
           {day, hour, some(), some(), named(QStringLiteral("C%1")), profile});
    insert(QStringLiteral("network_protocol_bandwidth"),
           {day, hour, some(), some(), 440 + random.bounded(3),
            random.bounded(2) == 0 ? QStringLiteral("TCP") : QStringLiteral("UDP"), profile});
}

QString RollUpTest::difference(const QList<HistoryScope>& scopes)
{
    History hourly(file(), History::RollUps::None, [this] { return m_today; });
    for (const HistoryScope& scope : scopes) {
        m_history->version();
        QString found = ::difference(*m_history, hourly, scope);
        if (!found.isEmpty() && m_history->preparedShare() == 1) {
            return found;
        }
    }
    return {};
}

/// The share that an answer has, with one that lacks nothing after it.
double RollUpTest::share(const HistoryScope& scope)
{
    m_history->version();
    m_history->totals(scope);
    m_history->totals({.first = m_today, .last = m_today, .profileId = {}});
    return m_history->preparedShare();
}

void RollUpTest::answersAsTheHourlyRowsDo()
{
    QCOMPARE(difference(manyScopes()), QString());
    QVERIFY(m_history->prepareMore());
    QCOMPARE(difference(manyScopes()), QString());
    QVERIFY(m_history->prepareMore());
    QVERIFY(m_history->prepareMore());
    QCOMPARE(difference(manyScopes()), QString());
    prepareAll();
    QCOMPARE(share(All), 1.0);
    QCOMPARE(difference(manyScopes()), QString());
}

void RollUpTest::showsHowMuchIsThere()
{
    QCOMPARE(share(All), ShareAtFirst);
    const int complete = RollUpCoverage::ReadAlong + RollUp::OpenDays;
    QCOMPARE(share({.first = Today.addDays(1 - complete), .last = Today, .profileId = {}}), 1.0);
    m_history->prepareMore();
    QVERIFY(share(All) > ShareAtFirst);
    prepareAll();
    QCOMPARE(share(All), 1.0);
}

void RollUpTest::keepsItsFile()
{
    m_history->totals(All);
    m_history->prepareMore();
    const QString cutOff = rollUpFile() + QStringLiteral(".cut-off");
    QVERIFY(QFile::copy(rollUpFile(), cutOff));
    prepareAll();
    open();
    QCOMPARE(share(All), 1.0);
    QCOMPARE(difference(), QString());
    const QFileDevice::Permissions others = QFileDevice::ReadGroup | QFileDevice::WriteGroup |
                                            QFileDevice::ReadOther | QFileDevice::WriteOther;
    QVERIFY(!(QFile::permissions(rollUpFile()) & others));
    // What a killed program leaves behind may lack writes, and is not read.
    m_history.reset();
    QVERIFY(QFile::remove(rollUpFile()) && QFile::rename(cutOff, rollUpFile()));
    open();
    QCOMPARE(share(All), ShareAtFirst);
}

void RollUpTest::sumsDaysThatAreOver()
{
    prepareAll();
    const QDate yesterday = Today.addDays(-1);
    exec("INSERT INTO keypress_frequency VALUES('2025-03-03', 9, 1, 1000, 0)");
    QCOMPARE(difference(manyScopes()), QString());
    for (int day = 0; day < 40; ++day) {
        m_today = m_today.addDays(1);
        QVERIFY(day % 20 != 0 || difference(manyScopes()).isEmpty());
        prepareAll();
    }
    QCOMPARE(difference(manyScopes()), QString());
    // Read from the sums by now, and as they were.
    exec("DELETE FROM keypress_frequency WHERE \"day\"='2025-03-03'");
    const auto keys = m_history->keys({.first = yesterday, .last = yesterday, .profileId = {}});
    QCOMPARE(keys->constFirst(), (KeyCount{.key = 1, .count = 1000}));
}

void RollUpTest::forgetsDaysThatAreNotOver()
{
    prepareAll();
    m_today = Today.addDays(-20);
    m_history->totals(All);
    exec("INSERT INTO keypress_frequency VALUES('2025-02-12', 9, 1, 1000, 0)");
    QCOMPARE(difference(manyScopes()), QString());
    m_today = Today;
    QCOMPARE(difference(manyScopes()), QString());
    prepareAll();
    QCOMPARE(share(All), 1.0);
    QCOMPARE(difference(manyScopes()), QString());
}

void RollUpTest::forgetsWhatWasPruned()
{
    prepareAll();
    exec("DELETE FROM mousepoints WHERE \"day\"<'2024-12-04'");
    exec("DELETE FROM mouseclicks_frequency WHERE \"day\"<'2024-12-04'");
    QCOMPARE(difference(), QString());
    QVERIFY(share(All) < 1);
    prepareAll();
    QCOMPARE(share(All), 1.0);
    QCOMPARE(difference(), QString());
    m_history.reset();
    exec("DELETE FROM mousepoints");
    open();
    prepareAll();
    QCOMPARE(difference(), QString());
}

void RollUpTest::followsTheStamp()
{
    prepareAll();
    exec("UPDATE keypress_frequency SET \"count\"=\"count\"+1 WHERE \"day\"<'2024-12-04'");
    QVERIFY(!difference().isEmpty());
    exec("REPLACE INTO settings VALUES('history_stamp', 'another')");
    QCOMPARE(share(All), ShareAtFirst);
    prepareAll();
    QCOMPARE(difference(), QString());
    QCOMPARE(share(All), 1.0);
    m_history.reset();
    exec("REPLACE INTO settings VALUES('history_stamp', 'a third')");
    open();
    QCOMPARE(share(All), ShareAtFirst);
}

void RollUpTest::noticesAnotherFile_data()
{
    QTest::addColumn<QString>("statement");
    QTest::newRow("copied weeks ago")
        << QStringLiteral("DELETE FROM %1 WHERE \"day\">'2025-02-10'");
    QTest::newRow("copied on a day before") << QStringLiteral(
        "DELETE FROM %1 WHERE \"day\">'2025-03-01' OR \"day\"='2025-03-01' AND \"hour\">12");
    QTest::newRow("somebody else's")
        << QStringLiteral("UPDATE OR REPLACE %1 SET \"day\"=date(\"day\", '-1 days')");
}

void RollUpTest::noticesAnotherFile()
{
    QFETCH(QString, statement);
    prepareAll();
    m_history.reset();
    for (const char* table :
         {"keypresses", "keypress_frequency", "keycombo_frequency", "mouseclicks",
          "mouseclicks_frequency", "mousepoints", "mousescrolls", "mousedistance", "uptime_hour",
          "input_per_application", "application_active_hour"}) {
        QVERIFY(m_database->exec(statement.arg(QLatin1String(table))));
    }
    open();
    QVERIFY(share(All) < 1);
    prepareAll();
    QCOMPARE(difference(), QString());
}

void RollUpTest::replacesADamagedFile_data()
{
    QTest::addColumn<Damage>("damage");
    QTest::newRow("no database") << Damage([](QFile& file) {
        file.resize(0);
        file.write(QByteArray(10'000, 'x'));
    });
    QTest::newRow("empty") << Damage([](QFile& file) { file.resize(0); });
    QTest::newRow("cut off") << Damage([](QFile& file) { file.resize(file.size() / 2); });
    QTest::newRow("overwritten") << Damage([](QFile& file) {
        constexpr int firstPages = 65'536;
        file.seek(firstPages);
        file.write(QByteArray(static_cast<int>(file.size()) - firstPages, 'x'));
    });
    QTest::newRow("another version") << Damage([](QFile& file) {
        constexpr int userVersion = 60; // https://sqlite.org/fileformat.html, section 1.3
        file.seek(userVersion);
        file.write(QByteArray(4, 1));
    });
}

void RollUpTest::replacesADamagedFile()
{
    QFETCH(Damage, damage);
    prepareAll();
    m_history.reset();
    QFile file(rollUpFile());
    QVERIFY(file.open(QIODevice::ReadWrite));
    damage(file);
    file.close();
    open();
    QCOMPARE(difference(), QString());
    prepareAll();
    QCOMPARE(difference(), QString());
    QCOMPARE(share(All), 1.0);
}

void RollUpTest::worksWithoutAFile()
{
    QVERIFY(QDir().mkpath(rollUpFile() + QStringLiteral("/in the way")));
    const LogCapture log;
    QCOMPARE(difference(), QString());
    QCOMPARE(share(All), 1.0);
    QVERIFY(!m_history->prepareMore());
    QCOMPARE(log.count(QStringLiteral("Unable to keep sums")), 1);
}

void RollUpTest::holdsUpNoWriter()
{
    QSqlDatabase writer =
        QSqlDatabase::cloneDatabase(m_database->database()->connection(), QStringLiteral("writer"));
    writer.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
    QVERIFY(writer.open());
    const auto canWrite = [&writer] {
        return DSqlQuery(writer).exec(
            QStringLiteral("UPDATE uptime_hour SET \"msec_active\"=\"msec_active\"+1 "
                           "WHERE \"day\"='2025-03-04'"));
    };
    QVERIFY(m_history->days(All));
    QVERIFY(canWrite());
    while (m_history->prepareMore()) {
        QVERIFY(canWrite());
    }
    QVERIFY(m_history->keys(All));
    QVERIFY(canWrite());
    writer.close();
}

REGISTER_TEST(RollUpTest);
#include "RollUpTest.moc"
