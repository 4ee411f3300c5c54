// SPDX-License-Identifier: GPL-3.0-or-later
#include "FakeZurgeService.h"
#include "account/Authorization.h"
#include "support/FileSizeLimit.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"
#include "support/Waiting.h"

#include <QSignalSpy>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <map>
#include <new>

namespace {

const QString Editor = QStringLiteral("/usr/bin/editor");
const QString Unknown = QStringLiteral("/usr/bin/unknown");
constexpr quint64 MiB = BytesPerMiB;

AccountIdentity somebody(qint64 userId = 42)
{
    return {userId,
            7,
            QStringLiteral("a@example.org"),
            QStringLiteral("Ada"),
            {},
            QStringLiteral("5a1f")};
}

/// A run of the client on a data directory, at a time of its own.
class Run
{
public:
    explicit Run(
        const QString& directory, ZurgeLedger& ledger,
        MachineIdSource machine = [] { return QByteArray("0123456789abcdef"); })
        : database(directory, m_prompts)
        , service(ledger)
        , stats(nullptr, std::move(machine), [this] { return now; })
    {
        Settings::instance().init(&database);
        Settings::instance().initializeDefaultSettings();
        stats.setup(directory);
        stats.setZurgeService(service.service());
        QObject::connect(&stats, &LocalStats::signalNeedMessageBox, &stats,
                         [this](const QString& title, const QString& text) {
                             boxes << title;
                             texts << text;
                         });
    }

    ~Run() { Settings::instance().close(); }

    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void signIn(int token = 1)
    {
        stats.setIdentity(somebody());
        stats.setZurgeToken(ZurgeLedger::text(token));
    }

    void count(int keys)
    {
        stats.increaseKeys(keys);
        stats.increaseAppKeys(Editor, keys);
    }

    bool zurge(ZurgeStart start = ZurgeStart::Manual, const ZurgeWish& wish = {})
    {
        now = now.addSecs(20);
        return stats.doZurge(start, wish);
    }

    void answer(int status = 200)
    {
        stats.processZurgeResponse(status, service.zurgeAnswer(), QStringLiteral("Sorry"));
    }

    void answerInfo()
    {
        stats.processAccountInfo(200, service.accountInfo(), QStringLiteral("Success."));
    }

    quint64 keys() const { return stats.unzurged().keys; }

    bool hasInFlight() const { return stats.account().inFlight.has_value(); }

private:
    TestPrompts m_prompts;

public:
    QDateTime now{QDate(2026, 11, 21), QTime(12, 0)};
    Database database;
    FakeZurgeService service;
    LocalStats stats;
    QStringList boxes; ///< Titles.
    QStringList texts;
};

/// Finds out what became of the last zurge, as the next one does, and sends the rest.
void zurgeAll(Run& run)
{
    const auto answerQuestions = [&run] {
        if (std::exchange(run.service.asked, 0) > 0) {
            run.answerInfo();
        }
    };
    run.zurge();
    answerQuestions();
    if (!run.service.requests.isEmpty()) {
        const bool taken = run.service.take();
        run.service.requests.clear();
        run.answer(taken ? 200 : 303);
        answerQuestions();
    }
}

} // namespace

class ZurgeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void choosesAmounts_data();
    void choosesAmounts();
    void sendsWholeUnits();
    void takesOffWhatWasSent();
    void refusesWhatMayNotGo_data();
    void refusesWhatMayNotGo();
    void keepsCountsAfterABadAnswer_data();
    void keepsCountsAfterABadAnswer();
    void suspendsAutomaticZurges();
    void findsOutWhatBecameOfAZurge_data();
    void findsOutWhatBecameOfAZurge();
    void countsAZurgeTakenLateOnce_data();
    void countsAZurgeTakenLateOnce();
    void remembersAZurgeOfAnotherAccount_data();
    void remembersAZurgeOfAnotherAccount();
    void learnsTheRightToken();
    void asksForATokenItNeverHad();
    void passesOverNewsOfAZurgeUnderWay();
    void resetsTheButton();
    void forgetsTheAccount();
    void takesAnAuthorization();
    void hearsOfItsRequests();
    void survivesBeingKilledAtEveryStep();
    void survivesAFailingFile_data();
    void survivesAFailingFile();
    void sendsNothingOnAFullDisk();

private:
    QString directory() const { return m_directory->path(); }

    std::unique_ptr<QTemporaryDir> m_directory;
    ZurgeLedger m_ledger;
};

void ZurgeTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>(fastTemporaryDirectory());
    m_ledger = {};
}

void ZurgeTest::choosesAmounts_data()
{
    QTest::addColumn<quint64>("wished");
    QTest::addColumn<quint64>("stored");
    QTest::addColumn<quint64>("sent");
    const auto row = [](const char* name, quint64 wished, quint64 stored, quint64 sent) {
        QTest::newRow(name) << wished << stored << sent;
    };
    row("no wish", 0, 1234, 1234);
    row("as much", 1000, 1000, 1000);
    row("twice as much", 1000, 2000, 1000);
    row("more than twice", 1000, 2001, 2001);
    row("more than is stored", 1000, 10, 10);
    row("half of all numbers", CounterLimit, CounterLimit, CounterLimit);
}

void ZurgeTest::choosesAmounts()
{
    QFETCH(quint64, wished);
    QFETCH(quint64, stored);
    QFETCH(quint64, sent);
    const ZurgeWish wish{.keys = wished, .uptimeSeconds = wished, .downloadMiB = wished};
    const UnzurgedCounts counts{.keys = stored, .upload = 5};
    QCOMPARE(ZurgeAmounts::choose(wish, counts).keys, sent);
    QCOMPARE(ZurgeAmounts::choose(wish, counts).upload, 5U);
    if (stored < CounterLimit) {
        const UnzurgedCounts large{.download = stored * MiB, .uptime = stored * 1000};
        QCOMPARE(ZurgeAmounts::choose(wish, large).download, sent * MiB);
        QCOMPARE(ZurgeAmounts::choose(wish, large).uptime, sent * 1000);
    }
}

void ZurgeTest::sendsWholeUnits()
{
    Run run(directory(), m_ledger);
    run.signIn();
    QVERIFY(DSqlQuery(&run.database)
                .exec(QStringLiteral("INSERT INTO applications (path, online_app_id) VALUES "
                                     "('/usr/bin/editor', 3), ('/usr/bin/unknown', 0)")));
    QVERIFY(
        DSqlQuery(&run.database)
            .exec(QStringLiteral("INSERT INTO application_uptime (path, last_active, last_used) "
                                 "VALUES ('/usr/bin/editor', '2026-01-01 10:00:00', "
                                 "'2026-01-01 11:00:00')")));
    run.stats.increaseBandwidth(5 * MiB - 1, 2 * MiB);
    run.stats.increaseUptime(7'999);
    run.stats.increaseAppBandwidth(Editor, 3 * MiB + 7, 5);
    run.stats.increaseAppKeys(Unknown, 4);
    QVERIFY(run.zurge(ZurgeStart::Automatic));
    const ClientCommunication::ZurgeRequest& request = run.service.requests.constLast();
    QCOMPARE(request.downloadMiB, 4U);
    QCOMPARE(request.uploadMiB, 2U);
    QCOMPARE(request.uptimeSeconds, 7U);
    QCOMPARE(request.token, ZurgeLedger::text(1));
    QVERIFY(request.automatic);
    QCOMPARE(request.applications.size(), 1);
    QCOMPARE(request.applications.constFirst().toMap(),
             (QVariantMap{{QStringLiteral("id"), 3},
                          {QStringLiteral("keys"), 0},
                          {QStringLiteral("clicks"), 0},
                          {QStringLiteral("download"), 3},
                          {QStringLiteral("upload"), 0},
                          {QStringLiteral("uptime"), 0},
                          {QStringLiteral("scrolls"), 0},
                          {QStringLiteral("distance_inches"), 0},
                          {QStringLiteral("lastused"),
                           QDateTime(QDate(2026, 1, 1), QTime(11, 0), Qt::UTC)
                               .toLocalTime()
                               .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))}}));
    run.answer();

    Settings::instance().setValue(SettingsKeys::OnlineSendApplications, false);
    run.stats.increaseAppBandwidth(Editor, 3 * MiB, 0);
    run.count(1);
    QVERIFY(run.zurge());
    QCOMPARE(run.service.requests.constLast().applications.size(), 0);
}

void ZurgeTest::takesOffWhatWasSent()
{
    Run run(directory(), m_ledger);
    run.signIn();
    QVERIFY(DSqlQuery(&run.database)
                .exec(QStringLiteral("INSERT INTO applications (path, online_app_id) VALUES "
                                     "('/usr/bin/editor', 3)")));
    Settings::instance().setValue(SettingsKeys::NotifyOnZurge, true);
    run.service.hasComputerInfo = false;
    QSignalSpy finished(&run.stats, &LocalStats::signalZurgeFinishedSuccessfully);
    QSignalSpy tray(&run.stats, &LocalStats::signalNeedTrayIconMessage);
    QSignalSpy messages(&run.stats, &LocalStats::signalNeedPendingMessages);
    QSignalSpy computer(&run.stats, &LocalStats::signalNeedComputerInfoUpload);
    run.count(1500);
    run.stats.increaseBandwidth(5 * MiB - 1, 0);
    run.stats.increaseUptime(1'999);
    QVERIFY(run.zurge(ZurgeStart::Manual, {.keys = 1000}));
    run.count(30);
    run.stats.increaseBandwidth(3, 0);
    run.service.take();
    run.answer();

    QCOMPARE(run.keys(), 530U);
    QCOMPARE(run.stats.unzurged().download, MiB + 2);
    QCOMPARE(run.stats.unzurged().uptime, 999U);
    QCOMPARE(run.stats.unzurgedPerApplication().value(Editor).keys, 30U);
    QCOMPARE(run.stats.account().zurgeToken, ZurgeLedger::text(2));
    QVERIFY(!run.hasInFlight());
    DSqlQuery copy(&run.database,
                   QStringLiteral("SELECT value FROM unzurged_stats WHERE name = 'keys'"), true);
    QVERIFY(copy.next());
    QCOMPARE(copy.value(0).toInt(), 530);
    Settings& settings = Settings::instance();
    QCOMPARE(settings.value(SettingsKeys::OnlineTotalScrolls), 6);
    QCOMPARE(settings.value(SettingsKeys::OnlineTotalDistanceMiles), 7.0);
    QCOMPARE(settings.value(SettingsKeys::OnlineRankUptime), 5);
    QCOMPARE(finished.size() + tray.size() + messages.size() + computer.size(), 4);
    QCOMPARE(tray.constFirst().constFirst().toString(), QStringLiteral("Zurge succeeded!"));

    // A second answer to the same zurge takes nothing off.
    run.answer();
    QCOMPARE(run.keys(), 530U);
}

void ZurgeTest::refusesWhatMayNotGo_data()
{
    QTest::addColumn<QByteArray>("obstacle");
    QTest::addColumn<ZurgeStart>("start");
    QTest::addColumn<QString>("box");
    QTest::addColumn<bool>("sent");
    const QString throttled =
        QStringLiteral("Zurge throttled! Your last zurge was 9 seconds ago, please try again in "
                       "10 seconds.");
    const QString offline =
        QStringLiteral("The setting \"Work Offline\" is enabled. This prevents the client from "
                       "going online, which includes zurging. Disable that setting and you can "
                       "zurge again.");
    const auto row = [](const char* name, const char* obstacle, ZurgeStart start,
                        const QString& box, bool sent) {
        QTest::newRow(name) << QByteArray(obstacle) << start << box << sent;
    };
    row("nothing in the way", "", ZurgeStart::Manual, {}, true);
    row("9.9 s later", "9900", ZurgeStart::Manual, throttled, false);
    row("10.0 s later", "10000", ZurgeStart::Manual, {}, true);
    row("clock set back", "-3600000", ZurgeStart::Manual, {}, true);
    row("offline, from the window", "offline", ZurgeStart::MainWindow, offline, false);
    row("offline, from the tray", "offline", ZurgeStart::Manual, {}, false);
    row("offline, automatic", "offline", ZurgeStart::Automatic, {}, false);
    row("nobody signed in", "nobody", ZurgeStart::Manual, {}, false);
    row("in progress", "progress", ZurgeStart::Manual, {}, false);
    row("nothing to send", "zero", ZurgeStart::Manual, {}, false);
    row("less than one unit", "fraction", ZurgeStart::Manual, {}, false);
}

void ZurgeTest::refusesWhatMayNotGo()
{
    QFETCH(QByteArray, obstacle);
    QFETCH(ZurgeStart, start);
    QFETCH(bool, sent);
    Run run(directory(), m_ledger);
    run.signIn();
    run.count(obstacle == "zero" || obstacle == "fraction" ? 0 : 10);
    const qint64 elapsedMs = obstacle.toLongLong();
    if (elapsedMs != 0) {
        QVERIFY(run.zurge());
        run.answer();
        run.count(10);
        run.now = run.now.addMSecs(elapsedMs);
    } else if (obstacle == "offline") {
        Settings::instance().setValue(SettingsKeys::WorkOffline, true);
    } else if (obstacle == "nobody") {
        run.stats.signOut();
    } else if (obstacle == "progress") {
        QVERIFY(run.zurge());
        run.now = run.now.addSecs(15);
    } else if (obstacle == "fraction") {
        run.stats.increaseUptime(999);
    }
    const qsizetype before = run.service.requests.size();
    QCOMPARE(run.stats.doZurge(start), sent);
    QCOMPARE(run.service.requests.size(), before + (sent ? 1 : 0));
    QTEST(run.texts.join(QLatin1Char('|')), "box");
    QCOMPARE(run.stats.isZurging(), sent || obstacle == "progress");
}

void ZurgeTest::keepsCountsAfterABadAnswer_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("uncertain");
    const auto row = [](const char* name, int status, bool uncertain, const char* field = "",
                        const QVariant& value = {}) {
        QTest::newRow(name) << status << QString::fromLatin1(field) << value << uncertain;
    };
    QVariantMap negative = FakeZurgeService::figures();
    negative.insert(QStringLiteral("keys"), -1);
    row("no answer", 0, true);
    row("server error", 500, true);
    row("throttled", 305, false);
    row("maintenance", 400, false);
    row("without totals", 200, true, "new_totals");
    row("negative totals", 205, true, "new_totals", negative);
}

void ZurgeTest::keepsCountsAfterABadAnswer()
{
    QFETCH(int, status);
    QFETCH(QString, field);
    QFETCH(QVariant, value);
    Run run(directory(), m_ledger);
    run.signIn();
    run.count(10);
    QVERIFY(run.zurge());
    run.service.take();
    QMap<QString, QVariant> data = run.service.zurgeAnswer();
    data.insert(field, value);
    run.stats.processZurgeResponse(status, data, QStringLiteral("Sorry"));
    QCOMPARE(run.boxes, {QStringLiteral("Error while zurging!")});
    QCOMPARE(run.keys(), 10U);
    QCOMPARE(run.stats.account().zurgeToken, ZurgeLedger::text(1));
    QCOMPARE(Settings::instance().value(SettingsKeys::OnlineTotalKeys), 0);
    QTEST(run.hasInFlight(), "uncertain");
    QVERIFY(!run.stats.isZurging());
}

void ZurgeTest::suspendsAutomaticZurges()
{
    Run run(directory(), m_ledger);
    run.signIn();
    run.count(10);
    const auto fail = [&run](ZurgeStart start) {
        const bool sent = run.zurge(start);
        run.answer(305);
        return sent;
    };
    // A success and a zurge of the user's own do not count as failures in a row.
    QVERIFY(fail(ZurgeStart::Automatic) && fail(ZurgeStart::Automatic));
    QVERIFY(run.zurge(ZurgeStart::Automatic));
    run.service.take();
    run.answer();
    run.count(10);
    QVERIFY(fail(ZurgeStart::Automatic) && fail(ZurgeStart::Automatic));
    QVERIFY(run.boxes.isEmpty());
    QVERIFY(fail(ZurgeStart::Manual));
    run.boxes.clear();
    run.texts.clear();
    QVERIFY(fail(ZurgeStart::Automatic));
    QCOMPARE(run.boxes, {QStringLiteral("Automatic zurge error!")});
    QCOMPARE(run.texts, {QStringLiteral("Due to a zurge error, I'm disabling automatic zurges for "
                                        "now. Here's the error: Sorry")});
    const QDateTime suspended = run.now;
    run.now = suspended.addSecs(3600);
    QVERIFY(!run.stats.doZurge(ZurgeStart::Automatic));
    run.now = suspended.addSecs(3601);
    QVERIFY(run.stats.doZurge(ZurgeStart::Automatic));
    run.answer(305);
    QCOMPARE(run.boxes.size(), 1);
    QVERIFY(fail(ZurgeStart::Automatic) && fail(ZurgeStart::Automatic));
    QCOMPARE(run.boxes.size(), 2);
}

void ZurgeTest::findsOutWhatBecameOfAZurge_data()
{
    QTest::addColumn<bool>("taken");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("withToken");
    QTest::addColumn<quint64>("sent"); ///< By the next zurge; 0: none went out.
    QTest::addColumn<quint64>("unzurged");
    const auto row = [](const char* name, bool taken, int status, bool withToken, quint64 sent,
                        quint64 unzurged) {
        QTest::newRow(name) << taken << status << withToken << sent << unzurged;
    };
    row("taken", true, 200, true, 5, 5);
    row("not taken", false, 200, true, 10, 15);
    row("the service does not say", true, 200, false, 0, 15);
    row("the service does not answer", true, 0, true, 0, 15);
}

void ZurgeTest::findsOutWhatBecameOfAZurge()
{
    QFETCH(bool, taken);
    QFETCH(int, status);
    QFETCH(bool, withToken);
    QFETCH(quint64, sent);
    {
        Run run(directory(), m_ledger);
        run.signIn();
        run.count(10);
        QVERIFY(run.zurge());
        if (taken) {
            run.service.take();
        }
        run.count(5);
        QVERIFY(run.stats.saveSettings());
    }
    const LogCapture log;
    Run next(directory(), m_ledger);
    QVERIFY(log.contains(QStringLiteral("uncertain whether the service has taken keys 10")));
    QVERIFY(!log.contains(QStringLiteral("token-")));
    next.now = next.now.addSecs(60);
    QVERIFY(next.zurge());
    QCOMPARE(next.service.asked, 1);
    QVERIFY(next.service.requests.isEmpty());
    QMap<QString, QVariant> info = next.service.accountInfo();
    if (!withToken) {
        info.remove(QStringLiteral("token"));
    }
    next.stats.processAccountInfo(status, info, QStringLiteral("Sorry"));
    QCOMPARE(next.service.requests.size(), sent > 0 ? 1 : 0);
    QCOMPARE(next.boxes.size(), sent > 0 ? 0 : 1);
    QVERIFY(next.hasInFlight());
    QCOMPARE(next.stats.isZurging(), sent > 0);
    QTEST(next.keys(), "unzurged");
    if (sent > 0) {
        QCOMPARE(next.service.requests.constFirst().keys, sent);
        next.service.take();
        next.answer();
        QCOMPARE(m_ledger.keys + next.keys(), 15U);
    }
}

void ZurgeTest::countsAZurgeTakenLateOnce_data()
{
    QTest::addColumn<int>("status"); ///< Of the second time.
    QTest::newRow("the second is refused for its token") << 303;
    QTest::newRow("the second is refused for another reason") << 305;
    QTest::newRow("the second has no answer either") << 0;
}

void ZurgeTest::countsAZurgeTakenLateOnce()
{
    QFETCH(int, status);
    Run run(directory(), m_ledger);
    run.signIn();
    run.count(10);
    QVERIFY(run.zurge());
    run.answer(0);
    run.count(5);
    QVERIFY(run.zurge());
    run.answerInfo();
    QCOMPARE(run.service.requests.size(), 2);
    QCOMPARE(run.service.requests.constLast().keys, 10U);
    QVERIFY(run.service.take(run.service.requests.constFirst()));
    QVERIFY(!run.service.take());
    run.answer(status);
    run.service.requests.clear();
    zurgeAll(run);
    QCOMPARE(m_ledger.keys, 15U);
    QCOMPARE(run.keys(), 0U);
}

void ZurgeTest::remembersAZurgeOfAnotherAccount_data()
{
    // Each character is one thing done, after a zurge of ten keys was sent: T has the service take
    // it, A answers it, R refuses it, 0 says that there is no answer, o signs out, i signs in
    // again, b as somebody else, X starts anew, Z zurges what there is.
    QTest::addColumn<QByteArray>("history");
    QTest::addColumn<quint64>("unzurged");
    QTest::newRow("answered after the end") << QByteArray("ToA") << Q_UINT64_C(0);
    QTest::newRow("refused after the end") << QByteArray("oRiZ") << Q_UINT64_C(0);
    QTest::newRow("answered to another") << QByteArray("TobAoi") << Q_UINT64_C(0);
    QTest::newRow("answered to itself again") << QByteArray("ToiA") << Q_UINT64_C(0);
    QTest::newRow("taken, asked when back") << QByteArray("T0oiZ") << Q_UINT64_C(0);
    QTest::newRow("not taken, asked when back") << QByteArray("0oiZ") << Q_UINT64_C(0);
    QTest::newRow("taken, no answer after the end") << QByteArray("To0XiZ") << Q_UINT64_C(0);
    QTest::newRow("taken, another in between") << QByteArray("T0oXbXoXiZ") << Q_UINT64_C(0);
    QTest::newRow("not taken, another signed in") << QByteArray("0obX") << Q_UINT64_C(10);
}

void ZurgeTest::remembersAZurgeOfAnotherAccount()
{
    QFETCH(QByteArray, history);
    auto run = std::make_unique<Run>(directory(), m_ledger);
    run->signIn();
    run->count(10);
    QVERIFY(run->zurge());
    const auto start = [&] {
        run.reset();
        run = std::make_unique<Run>(directory(), m_ledger);
        run->now = run->now.addDays(1);
    };
    const auto zurge = [&] {
        run->service.requests.clear();
        zurgeAll(*run);
        zurgeAll(*run);
    };
    const std::map<char, std::function<void()>> steps{
        {'T', [&] { run->service.take(); }},
        {'A', [&] { run->answer(); }},
        {'R', [&] { run->answer(400); }},
        {'0', [&] { run->answer(0); }},
        {'o', [&] { run->stats.signOut(); }},
        {'i', [&] { run->stats.setIdentity(somebody()); }},
        {'b', [&] { run->stats.setIdentity(somebody(43)); }},
        {'X', start},
        {'Z', zurge},
    };
    for (const char step : history) {
        steps.at(step)();
    }
    QTEST(run->keys(), "unzurged");
    QCOMPARE(m_ledger.keys + run->keys(), 10U);
}

void ZurgeTest::learnsTheRightToken()
{
    Run run(directory(), m_ledger);
    run.signIn(9);
    run.count(10);
    QVERIFY(run.zurge());
    run.answer(303);
    QCOMPARE(run.service.asked, 1);
    run.answerInfo();
    QCOMPARE(run.service.requests.size(), 1);
    QVERIFY(run.zurge());
    run.service.take();
    run.answer();
    QCOMPARE(m_ledger.keys, 10U);
    QCOMPARE(run.keys(), 0U);
}

void ZurgeTest::asksForATokenItNeverHad()
{
    Run run(directory(), m_ledger);
    run.stats.setIdentity(somebody());
    run.count(10);
    QVERIFY(run.zurge());
    run.answer(0);
    QVERIFY(run.zurge());
    run.answerInfo();
    QCOMPARE(run.service.requests.size(), 2);
    QVERIFY(run.service.take());
    run.answer();
    QCOMPARE(m_ledger.keys, 10U);
    QCOMPARE(run.keys(), 0U);
}

void ZurgeTest::passesOverNewsOfAZurgeUnderWay()
{
    Run run(directory(), m_ledger);
    run.signIn();
    run.count(10);
    QVERIFY(run.zurge());
    run.stats.processAccountInfo(200, run.service.accountInfo(), {});
    QVERIFY(run.hasInFlight());

    run.service.take();
    run.answer();
    QCOMPARE(run.keys(), 0U);
    run.answerInfo();
    QCOMPARE(run.keys(), 0U);
    QCOMPARE(run.stats.account().zurgeToken, ZurgeLedger::text(2));
}

void ZurgeTest::resetsTheButton()
{
    Run run(directory(), m_ledger);
    run.signIn();
    run.count(10);
    QSignalSpy button(&run.stats, &LocalStats::signalNeedZurgeButtonUpdated);
    QVERIFY(run.zurge());
    QCOMPARE(button.size(), 1);
    QVERIFY(!run.zurge());
    run.stats.resetZurgeButton();
    QVERIFY(!run.stats.isZurging());

    // Impatient, the user asks again; then both answers come.
    run.count(5);
    QVERIFY(run.zurge());
    QCOMPARE(run.service.asked, 1);
    run.service.take();
    run.answer();
    QCOMPARE(run.keys(), 5U);
    run.answerInfo();
    QCOMPARE(run.service.requests.constLast().keys, 5U);
    QVERIFY(run.stats.isZurging());
    run.service.take();
    run.answer();
    QCOMPARE(m_ledger.keys, 15U);
    QCOMPARE(run.keys(), 0U);
}

void ZurgeTest::forgetsTheAccount()
{
    const LogCapture log;
    {
        Run run(directory(), m_ledger);
        run.signIn();
        run.count(10);
        QVERIFY(run.zurge());
        run.stats.signOut();
        QVERIFY(log.contains(QStringLiteral("uncertain whether the service has taken keys 10")));
        QVERIFY(!run.stats.isZurging());
        QCOMPARE(Settings::instance().value(SettingsKeys::OnlineEmail), QString());
        QCOMPARE(Settings::instance().value(SettingsKeys::OnlineUserid), 0);
        run.service.take();
        run.answer();
        QVERIFY(run.stats.account() == AccountRecord());
        QCOMPARE(run.boxes, QStringList());
        QCOMPARE(Settings::instance().value(SettingsKeys::OnlineTotalKeys), 0);
        run.stats.setIdentity(somebody(43));
        QCOMPARE(Settings::instance().value(SettingsKeys::OnlineUserid), 43);
    }
    const Run next(directory(), m_ledger);
    QVERIFY(next.stats.identity() == somebody(43));
    QCOMPARE(next.stats.account().zurgeToken, QString());
    QVERIFY(!log.contains(QStringLiteral("5a1f")));
}

void ZurgeTest::takesAnAuthorization()
{
    Run run(directory(), m_ledger);
    run.signIn();
    run.count(10);
    QVERIFY(run.zurge());
    run.service.take();
    run.answer(0);
    // Linked once more: the same computer, of which the service tells another token.
    Authorization authorization;
    authorization.identity = somebody();
    authorization.zurgeToken = ZurgeLedger::text(m_ledger.token);
    authorization.totals = FakeZurgeService::figures();
    authorization.ranks = FakeZurgeService::figures();
    run.stats.signIn(authorization);
    QVERIFY(!run.hasInFlight());
    QCOMPARE(run.keys(), 0U);
    QCOMPARE(Settings::instance().value(SettingsKeys::OnlineTotalClicks), 2);
    QCOMPARE(Settings::instance().value(SettingsKeys::OnlineEmail),
             QStringLiteral("a@example.org"));
}

void ZurgeTest::hearsOfItsRequests()
{
    Run run(directory(), m_ledger);
    run.signIn();
    run.count(10);
    ClientCommunication communication;
    communication.setClientURL(QStringLiteral("http://127.0.0.1:1/nobody-listens"));
    run.stats.setCommunication(communication);
    QVERIFY(run.zurge());
    QVERIFY(run.hasInFlight());
    QVERIFY(run.boxes.isEmpty());
    QVERIFY(comesTrue([&] { return !run.boxes.isEmpty(); }));
    QCOMPARE(run.boxes, {QStringLiteral("Error while zurging!")});
    QVERIFY(run.hasInFlight());

    // The next one asks first; a question that is dropped ends it.
    QVERIFY(run.zurge());
    Q_EMIT communication.requestDropped(QStringLiteral("refresh_account_info"));
    QCOMPARE(run.texts.constLast(), QStringLiteral("The service did not answer."));
    QVERIFY(!run.stats.isZurging());
    run.stats.signOut();
    QVERIFY(!communication.refreshAccountInfo());
}

namespace {

/// What a killed client leaves behind, apart from its files.
struct Aftermath
{
    ZurgeLedger ledger;
    quint64 counted = 0; ///< Keys that were stored.
};

/// Ends the process, as a kill does, at the step given.
class Steps
{
public:
    explicit Steps(int last)
        : m_left(last)
    {
    }

    void step()
    {
        if (m_left-- == 0) {
            ::_exit(1);
        }
    }

private:
    int m_left;
};

/// Counts and zurges three times; a service that takes what is sent answers the first and the last.
void countAndZurge(const QString& directory, Aftermath& aftermath, Steps& steps)
{
    // The id is asked for before each write of the file.
    Run run(directory, aftermath.ledger, [&steps] {
        steps.step();
        return QByteArray("0123456789abcdef");
    });
    run.signIn();
    for (const bool answered : {true, false, true}) {
        run.count(100);
        run.stats.saveSettings();
        aftermath.counted += 100;
        run.zurge();
        if (run.service.requests.isEmpty() || run.service.asked > 0) {
            run.answerInfo();
        }
        steps.step();
        run.service.take();
        steps.step();
        run.stats.resetZurgeButton();
        run.answer(answered ? 200 : 0);
        steps.step();
        run.stats.writeDatabaseCopy();
    }
}

} // namespace

void ZurgeTest::survivesBeingKilledAtEveryStep()
{
    void* shared = ::mmap(nullptr, sizeof(Aftermath), PROT_READ | PROT_WRITE,
                          MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    QVERIFY(shared != MAP_FAILED);
    int kills = 0;
    for (bool finished = false; !finished; ++kills) {
        init();
        auto* aftermath = new (shared) Aftermath;
        const pid_t child = ::fork();
        if (child == 0) {
            Steps steps(kills);
            countAndZurge(directory(), *aftermath, steps);
            ::_exit(0);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status));
        finished = WEXITSTATUS(status) == 0;

        Run next(directory(), aftermath->ledger);
        next.now = next.now.addDays(1);
        if (next.stats.isLoggedIn()) {
            zurgeAll(next);
            zurgeAll(next);
        }
        QCOMPARE(aftermath->ledger.keys + next.keys(), aftermath->counted);
    }
    QVERIFY(kills > 15);
    ::munmap(shared, sizeof(Aftermath));
}

void ZurgeTest::survivesAFailingFile_data()
{
    // Each character is one thing done: K counts ten keys, S saves the file, C copies to the
    // database, Z sends a zurge, T has the service take it, A answers it, x makes the file fail.
    QTest::addColumn<QByteArray>("history");
    QTest::addColumn<quint64>("counted"); ///< What was stored somewhere.
    QTest::newRow("nothing fails") << QByteArray("KSZTKAC") << Q_UINT64_C(20);
    QTest::newRow("answer not stored") << QByteArray("KSZTxA") << Q_UINT64_C(10);
    QTest::newRow("answer stored in the database only") << QByteArray("KSZTKxAC") << Q_UINT64_C(20);
    QTest::newRow("no answer, counted on") << QByteArray("KSZTKxC") << Q_UINT64_C(20);
    QTest::newRow("not taken, counted on") << QByteArray("KSZKxC") << Q_UINT64_C(20);
    QTest::newRow("cannot be put on record") << QByteArray("KSxZKC") << Q_UINT64_C(20);
}

void ZurgeTest::survivesAFailingFile()
{
    QFETCH(QByteArray, history);
    const QString path = QDir(directory()).filePath(TvwFile::FileName);
    const QString kept = path + QStringLiteral(".kept");
    {
        Run run(directory(), m_ledger);
        run.signIn();
        for (const char step : history) {
            switch (step) {
            case 'K':
                run.count(10);
                break;
            case 'S':
                run.stats.saveSettings();
                break;
            case 'C':
                run.stats.writeDatabaseCopy();
                break;
            case 'Z':
                run.zurge();
                break;
            case 'T':
                run.service.take();
                break;
            case 'A':
                run.answer();
                break;
            case 'x':
                // A directory in the file's place cannot be replaced by one.
                QVERIFY(QFile::rename(path, kept));
                QVERIFY(QDir().mkpath(path + QStringLiteral("/something")));
                break;
            }
        }
    }
    if (QFile::exists(kept)) {
        QVERIFY(QDir(path).removeRecursively());
        QVERIFY(QFile::rename(kept, path));
    }
    Run next(directory(), m_ledger);
    next.now = next.now.addDays(1);
    for (int i = 0; i < 3; ++i) { // The first may have to learn the token.
        zurgeAll(next);
    }
    QTEST(m_ledger.keys + next.keys(), "counted");
}

void ZurgeTest::sendsNothingOnAFullDisk()
{
    Run run(directory(), m_ledger);
    run.signIn();
    run.count(10);
    {
        const FileSizeLimit none(0);
        QVERIFY(!run.zurge());
    }
    QVERIFY(run.service.requests.isEmpty());
    QVERIFY(!run.hasInFlight());
    QVERIFY(
        !QFile::exists(QDir(directory()).filePath(TvwFile::FileName + QStringLiteral(".part"))));
    QCOMPARE(run.boxes, {QStringLiteral("Error while zurging!")});
    QVERIFY(run.zurge());
    QCOMPARE(run.service.requests.size(), 1);
}

REGISTER_TEST(ZurgeTest);
#include "ZurgeTest.moc"
