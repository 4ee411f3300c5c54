// SPDX-License-Identifier: GPL-3.0-or-later
#include "ScriptedService.h"
#include "account/ClientCommunication.h"
#include "storage/SettingsKeys.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"
#include "support/Waiting.h"

namespace {

/// A client that speaks to a service, and hears how its requests end.
struct Client
{
    explicit Client(const AccountIdentity& identity = Someone)
    {
        communication.setClientURL(service.url());
        communication.setIdentity(identity);
        QObject::connect(
            &communication, &ClientCommunication::requestDone, &communication,
            [this](const QString& type, int status, const QVariantMap&, const QString& message) {
                ended << type + QLatin1Char(' ') + QString::number(status);
                messages << message;
            });
        QObject::connect(&communication, &ClientCommunication::requestDropped, &communication,
                         [this](const QString& type) { ended << type + QStringLiteral(" -"); });
        QObject::connect(&communication, &ClientCommunication::computerArchived, &communication,
                         [this] { ++archived; });
    }

    /// Asks for the types in turn, at once.
    void ask(const QStringList& types)
    {
        for (const QString& type : types) {
            communication.clientRequest(type, {}, {}, false, true);
        }
    }

    bool waitForEnds(qsizetype count) const
    {
        return comesTrue([&] { return ended.size() >= count; });
    }

    bool waitForRequests(qsizetype count) const
    {
        return comesTrue([&] { return service.envelopes.size() >= count; });
    }

    QString spoken() const { return service.actions().join(QLatin1Char(' ')); }

    qint64 now = 1'000;
    ScriptedService service;
    ClientCommunication communication{nullptr, [this] { return now; }};
    QStringList ended; ///< "TYPE STATUS", or "TYPE -" for one that was dropped.
    QStringList messages;
    int archived = 0;
};

/// Shorthand for scripts and expectations.
QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

class ClientCommunicationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void meetsEveryFault_data();
    void meetsEveryFault();
    void countsLostTokensInARow();
    void signsInAgainWithAnOldToken();
    void sendsInTheOrderOfAsking();
    void abandonsWhatIsNotAnswered_data();
    void abandonsWhatIsNotAnswered();
    void goesOfflineWithAnArchivedComputer();
    void followsTheAccount_data();
    void followsTheAccount();
    void needsAnAccountForMostTypes();
    void succeedsInUploadingWhateverTheCode();
    void logsNoSecret();

private:
    std::unique_ptr<TestDatabase> m_database;
};

void ClientCommunicationTest::init()
{
    m_database = std::make_unique<TestDatabase>();
}

void ClientCommunicationTest::cleanup()
{
    m_database.reset();
}

void ClientCommunicationTest::meetsEveryFault_data()
{
    QTest::addColumn<QStringList>("orders");
    QTest::addColumn<QString>("spoken"); // L: client_login, R: the request.
    QTest::addColumn<QString>("ended");
    QTest::addColumn<QString>("message"); // How it begins.
    const auto row = [](const char* orders, const char* spoken, const char* ended,
                        const char* message) {
        QTest::addRow("%s: %s", spoken, orders)
            << words(orders) << QString::fromLatin1(spoken)
            << QStringLiteral("zurge ") + QLatin1String(ended) << QString::fromLatin1(message);
    };
    const char* noAccount = "Account or computer unknown! Did you register?";
    const char* maintenance = "Server is down due to maintenance, please try again later.";
    const char* internal = "Internal server error. Please try again later.";
    const char* missing = "Server error: Missing input! Please contact the developers.";
    const char* talking = "Error while talking to website: ";
    const char* empty = "Bad reply from server: empty";
    const char* backOff =
        "The website is not responding correctly to your request, please try again later.";

    row("300", "L", "300", noAccount);
    row(R"({"status":300,"data":{"pending_user":true}})", "L", "300",
        "Your account is pending activation, please check your email and try again after "
        "activating.");
    row("301", "L", "301", "Wrong password! Try again.");
    row("400", "L", "400", maintenance);
    row("500", "L", "500", internal);
    row("501", "L", "501", missing);
    row("600", "LLR", "200", "Success.");
    row("306", "L", "-", "");
    row("drop", "L", "0", talking);
    row("empty", "L", "0", empty);
    row(R"({"status":200,"data":{}})", "LLR", "200", "Success.");
    row(R"({"status":200} {"status":200} {"status":200})", "LLL", "600", backOff);

    row("", "LR", "200", "Success.");
    row("200 205", "LR", "205", "Success.");
    row("200 300", "LR", "300", noAccount);
    row("200 301", "LR", "301", "Wrong password! Try again.");
    row("200 302", "LR", "302",
        "Activity throttled breached, this means your keys or clicks per second is too high. Wait "
        "an hour or so to lower it and try again.");
    row("200 303", "LR", "303", "Wrong token, did you use this profile on another computer?");
    row("200 304", "LR", "304",
        "Requested username is already registered! Please choose another username and try again.");
    row("200 305", "LR", "305", "Zurge throttled. You can only zurge every 60 seconds.");
    row("200 308", "LR", "308", "Organization not found.");
    row("200 400", "LR", "400", maintenance);
    row("200 500", "LR", "500", internal);
    row("200 501", "LR", "501", missing);
    row("200 600", "LRLR", "200", "Success.");
    row("200 600 200 600", "LRLRLR", "200", "Success.");
    row("200 600 200 600 200 600", "LRLRLR", "600", backOff);
    row("200 600 301", "LRL", "301", "Wrong password! Try again.");
    row("200 306", "LR", "-", "");
    row("200 drop", "LR", "0", talking);
    row("200 empty", "LR", "0", empty);
    row(R"(200 {"data":{}})", "LR", "0", talking);
    row(R"(200 {"status":200.5})", "LR", "0", talking);
}

void ClientCommunicationTest::meetsEveryFault()
{
    QFETCH(QStringList, orders);
    QFETCH(QString, spoken);
    QFETCH(QString, message);
    Client client;
    client.service.expect(orders);
    client.ask(words("zurge testproxy"));
    QVERIFY(client.waitForEnds(2));
    QString actions = client.spoken();
    actions.replace(QStringLiteral("client_login"), QStringLiteral("L"))
        .replace(QStringLiteral("zurge"), QStringLiteral("R"))
        .remove(QLatin1Char(' '));
    QVERIFY2(actions.startsWith(spoken + QStringLiteral("testproxy")) ||
                 actions.startsWith(spoken + QStringLiteral("Ltestproxy")),
             qPrintable(actions));
    QTEST(client.ended.first(), "ended");
    if (!message.isEmpty()) {
        QVERIFY2(client.messages.first().startsWith(message), qPrintable(client.messages.first()));
    }
    // Whatever happened, the next request in the queue is served.
    QCOMPARE(client.ended.last(), QStringLiteral("testproxy 200"));
}

void ClientCommunicationTest::countsLostTokensInARow()
{
    const auto speak = [](const char* orders, const char* spoken) {
        return std::pair(words(orders), words(spoken).join(QLatin1Char(' ')));
    };
    Client client;
    // After backing off there is one more try, after an answer of any other kind there are two.
    for (const auto& [orders, spoken] :
         {speak("200 600 200 600 200 600",
                "client_login zurge client_login zurge client_login zurge"),
          speak("200 600 200 600", "client_login zurge client_login zurge"),
          speak("200 305", "client_login zurge"),
          speak("600 200 600 200 600", "zurge client_login zurge client_login zurge")}) {
        client.service.envelopes.clear();
        client.ended.clear();
        client.service.expect(orders);
        client.ask(words("zurge"));
        QVERIFY(client.waitForEnds(1));
        QCOMPARE(client.spoken(), spoken);
    }
}

void ClientCommunicationTest::signsInAgainWithAnOldToken()
{
    Client client;
    const auto askAfter = [&client](qint64 milliseconds) {
        client.now += milliseconds;
        client.ended.clear();
        client.ask(words("zurge"));
        return client.waitForEnds(1);
    };
    QVERIFY(askAfter(0));
    QVERIFY(askAfter(300'000));
    QCOMPARE(client.spoken(), QStringLiteral("client_login zurge zurge"));
    QVERIFY(askAfter(1));
    QCOMPARE(client.spoken(), QStringLiteral("client_login zurge zurge client_login zurge"));
    QCOMPARE(client.service.envelopes.last()[QLatin1String("client_token")].toString(),
             QStringLiteral("token-2"));
    client.communication.resetToken();
    QVERIFY(client.waitForEnds(2));
    QVERIFY(askAfter(0));
    QVERIFY(client.spoken().endsWith(QStringLiteral(" reset_token client_login zurge")));
}

void ClientCommunicationTest::sendsInTheOrderOfAsking()
{
    Client client;
    // What a requester asks for while it is told of an end waits its turn as well.
    connect(&client.communication, &ClientCommunication::requestDone, &client.communication,
            [&client](const QString& type) {
                if (type == QLatin1String("zurge")) {
                    client.ask(words("get_pending_messages"));
                }
            });
    client.ask(words("zurge refresh_account_info testproxy"));
    QVERIFY(client.waitForEnds(4));
    QCOMPARE(client.spoken(), QStringLiteral("client_login zurge refresh_account_info testproxy "
                                             "get_pending_messages"));
}

void ClientCommunicationTest::abandonsWhatIsNotAnswered_data()
{
    QTest::addColumn<QStringList>("orders");
    QTest::addColumn<QByteArray>("lateAnswer");
    QTest::newRow("request") << words("200 silent silent") << QByteArray(R"({"status":200})");
    QTest::newRow("sign-in") << words("silent silent")
                             << QByteArray(R"({"status":200,"data":{"client_token":"late"}})");
}

void ClientCommunicationTest::abandonsWhatIsNotAnswered()
{
    QFETCH(QStringList, orders);
    QFETCH(QByteArray, lateAnswer);
    Client client;
    client.service.expect(orders);
    client.ask(words("zurge refresh_account_info"));
    QVERIFY(client.waitForRequests(orders.size() - 1));
    client.now += ClientCommunication::LongestExchangeMs;
    client.ask(words("reset_token"));
    QCOMPARE(client.ended, QStringList());
    client.now += 1;
    client.ask(words("get_pending_messages"));
    QCOMPARE(client.ended, {QStringLiteral("zurge -")});
    QVERIFY(client.waitForRequests(orders.size()));
    // The answer to the first request must not end the second one, which has none yet.
    client.service.answerLate(lateAnswer);
    QTest::qWait(20);
    QCOMPARE(client.ended.size(), 1);
    client.now += ClientCommunication::LongestExchangeMs + 1;
    client.ask(words("testproxy"));
    QVERIFY(client.waitForEnds(5));
    QCOMPARE(
        client.ended,
        (QStringList{QStringLiteral("zurge -"), QStringLiteral("refresh_account_info -"),
                     QStringLiteral("reset_token 200"), QStringLiteral("get_pending_messages 200"),
                     QStringLiteral("testproxy 200")}));
    QVERIFY(!client.spoken().contains(QStringLiteral("zurge zurge")));
}

void ClientCommunicationTest::goesOfflineWithAnArchivedComputer()
{
    Client client;
    client.service.expect(words("200 900"));
    client.ask(words("zurge refresh_account_info testproxy"));
    QVERIFY(client.waitForEnds(3));
    QCOMPARE(client.ended,
             (QStringList{QStringLiteral("zurge 900"), QStringLiteral("refresh_account_info 0"),
                          QStringLiteral("testproxy 200")}));
    QCOMPARE(client.archived, 1);
    QVERIFY(Settings::instance().value(SettingsKeys::WorkOffline));
    QCOMPARE(client.spoken(), QStringLiteral("client_login zurge testproxy"));
    QVERIFY(!client.communication.refreshAccountInfo());
    Settings::instance().setValue(SettingsKeys::WorkOffline, false);
    QVERIFY(client.communication.refreshAccountInfo());
}

void ClientCommunicationTest::followsTheAccount_data()
{
    QTest::addColumn<QStringList>("orders");
    QTest::addColumn<QByteArray>("lateAnswer"); // After the account has changed.
    QTest::addColumn<AccountIdentity>("account");
    QTest::addColumn<QString>("spoken");
    QTest::addColumn<QString>("ended");
    QTest::addColumn<QString>("token"); // Of the last request.
    const auto other = [](const auto& change) {
        AccountIdentity account = Someone;
        change(account);
        return account;
    };
    const auto account = other([](auto& identity) { identity.userId = 43; });
    const auto computer = other([](auto& identity) { identity.computerId = 8; });
    const auto hash = other([](auto& identity) { identity.passwordHash = QStringLiteral("new"); });
    const QStringList signingIn = words("silent");
    const QStringList requesting = words("200 silent");
    const QByteArray token = R"({"status":200,"data":{"client_token":"of-the-other"}})";
    const QByteArray info = R"({"status":200,"data":{"token":"of-the-other"}})";
    const QString none = QStringLiteral("refresh_account_info 0 zurge 0 testproxy 200");
    const QString all = QStringLiteral("refresh_account_info 200 zurge 200 testproxy 200");
    QTest::newRow("other account, signing in")
        << signingIn << token << account << "client_login client_login testproxy" << none
        << "token-1";
    QTest::newRow("signed out, signing in")
        << signingIn << token << AccountIdentity() << "client_login testproxy" << none << "";
    QTest::newRow("other hash, signing in")
        << signingIn << token << hash
        << "client_login client_login refresh_account_info zurge testproxy" << all << "token-1";
    const QString afresh =
        QStringLiteral("client_login refresh_account_info client_login testproxy");
    QTest::newRow("other account") << requesting << info << account << afresh << none << "token-2";
    QTest::newRow("other computer")
        << requesting << info << computer << afresh << none << "token-2";
    QTest::newRow("signed out") << requesting << info << AccountIdentity()
                                << "client_login refresh_account_info testproxy" << none << "";
    QTest::newRow("other hash") << requesting << info << hash
                                << "client_login refresh_account_info client_login zurge testproxy"
                                << all << "token-2";
    QTest::newRow("other account, the earlier one archived")
        << requesting << QByteArray(R"({"status":900})") << account << afresh << none << "token-2";
}

void ClientCommunicationTest::followsTheAccount()
{
    QFETCH(QStringList, orders);
    QFETCH(QByteArray, lateAnswer);
    QFETCH(AccountIdentity, account);
    Client client;
    client.service.expect(orders);
    client.ask(words("refresh_account_info zurge testproxy"));
    QVERIFY(client.waitForRequests(orders.size()));
    client.communication.setIdentity(account);
    client.service.answerLate(lateAnswer);
    QVERIFY(client.waitForEnds(3));
    QTEST(client.spoken(), "spoken");
    QTEST(client.ended.join(QLatin1Char(' ')), "ended");
    QTEST(client.service.envelopes.last()[QLatin1String("client_token")].toString(), "token");
    QCOMPARE(client.archived, 0);
}

void ClientCommunicationTest::needsAnAccountForMostTypes()
{
    const LogCapture log;
    Client client((AccountIdentity()));
    const QStringList refused = words("zurge reset_token upload_file of_a_later_version");
    const QStringList free = words("login testproxy client_init_authorization "
                                   "client_check_authorization update_request upload_usage_stats");
    client.ask(refused + free);
    QVERIFY(client.waitForEnds(free.size()));
    QCOMPARE(client.service.actions(), free);
    for (const QString& type : refused) {
        QVERIFY(log.contains(QStringLiteral("Trying to do request (%1) while user is not logged "
                                            "in yet, blocking.")
                                 .arg(type)));
    }
    // With an account, none of the others goes out without a sign-in, whatever its requester says.
    client.communication.setIdentity(Someone);
    QVERIFY(client.communication.clientRequest(refused.last(), {}, {}, false, false));
    QVERIFY(client.waitForEnds(free.size() + 1));
    QVERIFY(client.service.actions().contains(QStringLiteral("client_login")));
}

void ClientCommunicationTest::succeedsInUploadingWhateverTheCode()
{
    Client client;
    client.service.expect(words("200 306 306"));
    const QString path = m_database->directory() + QStringLiteral("/keys.png");
    QVERIFY(writeFile(path, "\x89PNG"));
    client.communication.uploadFile(path, QStringLiteral("keyboard_image"));
    client.communication.refreshAccountInfo();
    client.communication.uploadFile(path + QLatin1Char('x'), QStringLiteral("keyboard_image"));
    QVERIFY(client.waitForEnds(3));
    QCOMPARE(client.ended, (QStringList{QStringLiteral("upload_file 200"),
                                        QStringLiteral("refresh_account_info -"),
                                        QStringLiteral("upload_file 0")}));
    QCOMPARE(client.messages.first(), QStringLiteral("Success, your file is now on the website!"));
}

void ClientCommunicationTest::logsNoSecret()
{
    const LogCapture log(Log::Level::Trace);
    Client client;
    client.service.expect(words("200 500"));
    client.communication.doZurge(
        {.token = QStringLiteral("zurgesecret"), .applications = {}, .timeSeries = {}});
    client.communication.checkClientAuthorization(QStringLiteral("uidsecret"), {});
    client.service.expect(
        {QStringLiteral(R"({"status":200,"data":{"passwordhash":"5a1fhash","token":"zurgesecret",)"
                        R"("url":"urlsecret"}})")});
    QVERIFY(client.waitForEnds(2));
    for (const char* line :
         {"Got error 500 back!", "Original request: zurge", "with input data: clickcount: 0, "}) {
        QVERIFY2(log.contains(QString::fromLatin1(line)), line);
    }
    for (const char* secret : {"5a1fhash", "token-1", "zurgesecret", "uidsecret", "urlsecret"}) {
        QVERIFY2(!log.contains(QString::fromLatin1(secret)), secret);
    }
}

REGISTER_TEST(ClientCommunicationTest);
#include "ClientCommunicationTest.moc"
