// SPDX-License-Identifier: GPL-3.0-or-later
#include "ScriptedService.h"
#include "account/BrowserAuthorization.h"
#include "account/ClientCommunication.h"
#include "support/TestRegistry.h"
#include "support/Waiting.h"

#include <QSignalSpy>
#include <QSysInfo>
#include <QTest>
#include <QUrlQuery>
#include <QUuid>

namespace {

/// A service, and an attempt to link this computer with it.
struct Attempt
{
    Attempt()
    {
        communication.setClientURL(service.url());
        const auto end = [this](const QString& type) { ended << type; };
        QObject::connect(&communication, &ClientCommunication::requestDone, &communication, end);
        QObject::connect(&communication, &ClientCommunication::requestDropped, &communication, end);
        QObject::connect(&authorization, &BrowserAuthorization::failed, &authorization,
                         [this](const QString& text) { heard << text; });
        QObject::connect(&authorization, &BrowserAuthorization::browserNeeded, &authorization,
                         [this](const QUrl& url) {
                             page = url;
                             heard << QStringLiteral("browser");
                         });
        QObject::connect(&authorization, &BrowserAuthorization::authorized, &authorization,
                         [this](const Authorization& answer) {
                             account = answer;
                             heard << QStringLiteral("authorized");
                         });
    }

    bool waitToHear(qsizetype count) const
    {
        return comesTrue([&] { return heard.size() >= count; });
    }

    bool waitForRequests(qsizetype count) const
    {
        return comesTrue([&] { return service.envelopes.size() >= count; });
    }

    bool waitForEnds(qsizetype count) const
    {
        return comesTrue([&] { return ended.size() >= count; });
    }

    /// Requests are sent in turn: one that was asked for comes before the one that is added here.
    bool hasAskedNoMore()
    {
        const qsizetype before = service.envelopes.size();
        communication.testProxy();
        return comesTrue([&] { return ended.contains(QStringLiteral("testproxy")); }) &&
               service.envelopes.size() == before + 1;
    }

    qint64 now = 0;
    ScriptedService service;
    ClientCommunication communication{nullptr, [this] { return now; }};
    BrowserAuthorization authorization{communication,
                                       QUrl(QStringLiteral("https://www.tallyvane.example"))};
    QStringList ended; ///< The types of requests, in turn.
    QStringList heard; ///< "browser", "authorized", or why it failed.
    QUrl page;
    Authorization account;
};

const QString Authorized = QStringLiteral(
    R"({"status":200,"data":{"userid":42,"computerid":7,"passwordhash":"5a1f","username":"me",)"
    R"("email":"me@tallyvane.example","computer":"desk","token":"z1",)"
    R"("lastzurge":"2026-07-01 10:00:00","totals":{"keys":5},"ranks":{"keys":1},)"
    R"("computer_stats":{"keys":4},"client_settings":{"settings":{}},"database_backups":[)"
    R"({"filename":"old.zip","created_at":"2026-01-01 10:00:00","size":10},)"
    R"({"filename":"new.zip","created_at":"2026-02-01 10:00:00","size":11},)"
    R"({"filename":"../escape.zip"},{"filename":""},7]}})");

const QString NotYet = QStringLiteral(R"({"status":200,"data":{}})");

} // namespace

class BrowserAuthorizationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void opensTheBrowser();
    void readsTheAccount();
    void meetsEveryAnswer_data();
    void meetsEveryAnswer();
    void checksOneAtATime();
    void hearsNothingOfAnEarlierAttempt();
};

void BrowserAuthorizationTest::opensTheBrowser()
{
    Attempt attempt;
    attempt.authorization.begin();
    QVERIFY(attempt.waitToHear(1));
    QCOMPARE(attempt.heard, {QStringLiteral("browser")});
    const QJsonObject data = attempt.service.envelopes.first()[QLatin1String("data")].toObject();
    const QString uid = data[QLatin1String("client_uid")].toString();
    QVERIFY(!QUuid::fromString(uid).isNull() && !uid.startsWith(QLatin1Char('{')));
    QCOMPARE(data[QLatin1String("organization_id")], QJsonValue(QString()));
    const QUrlQuery query(attempt.page);
    QCOMPARE(attempt.page.adjusted(QUrl::RemoveQuery).toString(),
             QStringLiteral("https://www.tallyvane.example/dashboard/my/client/") + uid);
    QCOMPARE(query.queryItemValue(QStringLiteral("id")), uid);
    QCOMPARE(query.queryItemValue(QStringLiteral("name"), QUrl::FullyDecoded),
             QSysInfo::machineHostName());
    attempt.authorization.checkNow();
    QVERIFY(attempt.waitForRequests(2));
    QCOMPARE(attempt.service.envelopes.last()[QLatin1String("data")].toObject(), data);
}

void BrowserAuthorizationTest::readsTheAccount()
{
    Attempt attempt;
    attempt.service.expect({QStringLiteral("200"), Authorized});
    attempt.authorization.begin();
    QVERIFY(attempt.waitToHear(1));
    attempt.authorization.checkNow();
    QVERIFY(attempt.waitToHear(2));
    QCOMPARE(attempt.heard.last(), QStringLiteral("authorized"));
    QCOMPARE(attempt.account.identity,
             (AccountIdentity{.userId = 42,
                              .computerId = 7,
                              .email = QStringLiteral("me@tallyvane.example"),
                              .userName = QStringLiteral("me"),
                              .computer = QStringLiteral("desk"),
                              .passwordHash = QStringLiteral("5a1f")}));
    QCOMPARE(attempt.account.zurgeToken, QStringLiteral("z1"));
    QCOMPARE(attempt.account.lastZurge,
             QDateTime(QDate(2026, 7, 1), QTime(10, 0), Qt::UTC).toLocalTime());
    QCOMPARE(attempt.account.computerStats.value(QStringLiteral("keys")), QVariant(4));
    QStringList names;
    for (const OnlineBackup& backup : attempt.account.backups) {
        names << backup.fileName + QLatin1Char(' ') + QString::number(backup.bytes);
    }
    QCOMPARE(names, (QStringList{QStringLiteral("new.zip 11"), QStringLiteral("old.zip 10")}));
    attempt.authorization.checkNow();
    QVERIFY(attempt.hasAskedNoMore()); // It is over.
}

void BrowserAuthorizationTest::meetsEveryAnswer_data()
{
    QTest::addColumn<QString>("toBegin"); // The orders for the two kinds of request.
    QTest::addColumn<QString>("toCheck");
    QTest::addColumn<QString>("outcome"); // "" where the user is waited for.
    const QString errors =
        QStringLiteral("Our server producing errors, please check back in a few minutes. Sorry!");
    const auto account = [](const char* before, const char* after) {
        return QString(Authorized).replace(QLatin1String(before), QLatin1String(after));
    };
    QTest::newRow("begin: maintenance")
        << "400"
        << ""
        << "Our server is currently in maintenance, please check back in a few minutes. Sorry!";
    for (const char* order : {"500", "308", "306", "drop", "empty"}) {
        QTest::addRow("begin: %s", order) << QString::fromLatin1(order) << "" << errors;
    }
    for (const char* order : {"400", "500", "306", "drop", "empty"}) {
        QTest::addRow("check: %s", order) << "200" << QString::fromLatin1(order) << "";
    }
    QTest::newRow("check: not expected")
        << "200"
        << "300"
        << "The website does not wait for this computer any more. Please begin again.";
    QTest::newRow("check: not yet") << "200" << NotYet << "";
    QTest::newRow("no user") << "200" << account("\"userid\":42,", "") << "";
    QTest::newRow("no computer") << "200" << account("\"computerid\":7,", "") << "";
    QTest::newRow("no hash") << "200" << account("\"passwordhash\":\"5a1f\",", "") << "";
    QTest::newRow("hash empty") << "200" << account("5a1f", "") << "";
    QTest::newRow("user null") << "200" << account(":42", ":null") << "";
    QTest::newRow("user as text") << "200" << account(":42", ":\"42\"") << "authorized";
    QTest::newRow("user negative") << "200" << account(":42", ":-42") << errors;
    QTest::newRow("user a fraction") << "200" << account(":42", ":42.5") << errors;
    QTest::newRow("computer a word") << "200" << account(":7,", ":\"seven\",") << errors;
    QTest::newRow("hash a number") << "200" << account("\"5a1f\"", "51") << errors;
    QTest::newRow("backups an object")
        << "200" << account("\"database_backups\":[", "\"other\":[") << "authorized";
    QTest::newRow("totals a list") << "200" << account("{\"keys\":5}", "[5]") << "authorized";
}

void BrowserAuthorizationTest::meetsEveryAnswer()
{
    QFETCH(QString, toBegin);
    QFETCH(QString, toCheck);
    QFETCH(QString, outcome);
    Attempt attempt;
    attempt.service.expect({toBegin});
    attempt.authorization.begin();
    QVERIFY(attempt.waitToHear(1));
    if (toCheck.isEmpty()) {
        QCOMPARE(attempt.heard, {outcome});
        return;
    }
    attempt.service.expect({toCheck, NotYet});
    attempt.authorization.checkNow();
    QVERIFY(attempt.waitForEnds(2));
    attempt.authorization.checkNow();
    // Whoever still waits for the user asks again.
    QVERIFY(outcome.isEmpty() ? attempt.waitForRequests(3) : attempt.hasAskedNoMore());
    attempt.heard.removeFirst();
    QCOMPARE(attempt.heard.join(QLatin1Char(' ')), outcome);
}

void BrowserAuthorizationTest::checksOneAtATime()
{
    Attempt attempt;
    attempt.service.expect({QStringLiteral("200"), QStringLiteral("silent"), Authorized});
    attempt.authorization.begin();
    QVERIFY(attempt.waitToHear(1));
    attempt.authorization.checkNow();
    // A check that is never answered is given up after a minute, and only then.
    for (int passed = 0; passed < 60; passed += 4) {
        attempt.authorization.checkNow();
        attempt.now += 4'000;
    }
    QVERIFY(attempt.waitForRequests(2));
    attempt.now += 4'000;
    attempt.authorization.checkNow();
    QVERIFY(attempt.waitToHear(2));
    QCOMPARE(attempt.heard.last(), QStringLiteral("authorized"));
    QCOMPARE(attempt.service.envelopes.size(), 3);
}

void BrowserAuthorizationTest::hearsNothingOfAnEarlierAttempt()
{
    Attempt attempt;
    attempt.service.expect({QStringLiteral("200"), QStringLiteral("silent")});
    attempt.authorization.begin();
    QVERIFY(attempt.waitToHear(1));
    attempt.authorization.checkNow();
    QVERIFY(attempt.waitForRequests(2));
    attempt.authorization.cancel();
    attempt.authorization.begin();
    attempt.service.answerLate(Authorized.toUtf8());
    QVERIFY(attempt.waitToHear(2));
    QCOMPARE(attempt.heard, (QStringList{QStringLiteral("browser"), QStringLiteral("browser")}));
    attempt.service.expect({Authorized});
    attempt.authorization.checkNow();
    QVERIFY(attempt.waitToHear(3));
    QCOMPARE(attempt.heard.last(), QStringLiteral("authorized"));
}

REGISTER_TEST(BrowserAuthorizationTest);
#include "BrowserAuthorizationTest.moc"
