// SPDX-License-Identifier: GPL-3.0-or-later
#include "ScriptedService.h"
#include "account/ClientCommunication.h"
#include "base/Version.h"
#include "storage/SettingsKeys.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QTest>

namespace {

using Operation = std::function<bool(ClientCommunication&)>;

const AccountIdentity Someone{.userId = 42,
                              .computerId = 7,
                              .email = QStringLiteral("me@tallyvane.example"),
                              .userName = QStringLiteral("me"),
                              .computer = QStringLiteral("desk"),
                              .passwordHash = QStringLiteral("5a1fhash")};

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
        return QTest::qWaitFor([&] { return ended.size() >= count; });
    }

    bool waitForRequests(qsizetype count) const
    {
        return QTest::qWaitFor([&] { return service.envelopes.size() >= count; });
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
    void reportsEveryCode_data();
    void reportsEveryCode();
    void countsLostTokensInARow();
    void signsInAgainWithAnOldToken();
    void sendsInTheOrderOfAsking();
    void abandonsWhatIsNotAnswered_data();
    void abandonsWhatIsNotAnswered();
    void goesOfflineWithAnArchivedComputer();
    void followsTheAccount();
    void sendsEveryOperation_data();
    void sendsEveryOperation();
    void succeedsInUploadingWhateverTheCode();
    void wrapsRequestsInTheEnvelope();
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
    const QString backOff = QStringLiteral("The website is not responding correctly to your "
                                           "request, please try again later.");
    const QString talking = QStringLiteral("Error while talking to website: ");
    const QString empty = QStringLiteral("Bad reply from server: empty");
    const QString noToken = QStringLiteral(R"({"status":200,"data":{}})");
    const QString pending = QStringLiteral(R"({"status":300,"data":{"pending_user":true}})");

    QTest::newRow("none") << words("") << "LR"
                          << "zurge 200"
                          << "Success.";
    QTest::newRow("sign-in 300") << words("300") << "L"
                                 << "zurge 300"
                                 << "Account or computer unknown! Did you register?";
    QTest::newRow("sign-in pending")
        << QStringList{pending} << "L"
        << "zurge 300"
        << "Your account is pending activation, please check your email and try again after "
           "activating.";
    QTest::newRow("sign-in 301") << words("301") << "L"
                                 << "zurge 301"
                                 << "Wrong password! Try again.";
    QTest::newRow("sign-in 400") << words("400") << "L"
                                 << "zurge 400"
                                 << "Server is down due to maintenance, please try again later.";
    QTest::newRow("sign-in 500") << words("500") << "L"
                                 << "zurge 500"
                                 << "Internal server error. Please try again later.";
    QTest::newRow("sign-in 501") << words("501") << "L"
                                 << "zurge 501"
                                 << "Server error: Missing input! Please contact the developers.";
    QTest::newRow("sign-in 600") << words("600") << "LLR"
                                 << "zurge 200"
                                 << "Success.";
    QTest::newRow("sign-in 306") << words("306") << "L"
                                 << "zurge -"
                                 << "";
    QTest::newRow("sign-in drops") << words("drop") << "L"
                                   << "zurge 0" << talking;
    QTest::newRow("sign-in empty") << words("empty") << "L"
                                   << "zurge 0" << empty;
    QTest::newRow("sign-in without a token") << QStringList{noToken} << "LLR"
                                             << "zurge 200"
                                             << "Success.";
    QTest::newRow("sign-in never with a token") << QStringList{noToken, noToken, noToken} << "LLL"
                                                << "zurge 600" << backOff;
    QTest::newRow("600") << words("200 600") << "LRLR"
                         << "zurge 200"
                         << "Success.";
    QTest::newRow("600 twice") << words("200 600 200 600") << "LRLRLR"
                               << "zurge 200"
                               << "Success.";
    QTest::newRow("600 three times") << words("200 600 200 600 200 600") << "LRLRLR"
                                     << "zurge 600" << backOff;
    QTest::newRow("600, then sign-in 301") << words("200 600 301") << "LRL"
                                           << "zurge 301"
                                           << "Wrong password! Try again.";
    QTest::newRow("500") << words("200 500") << "LR"
                         << "zurge 500"
                         << "Internal server error. Please try again later.";
    QTest::newRow("306") << words("200 306") << "LR"
                         << "zurge -"
                         << "";
    QTest::newRow("drops") << words("200 drop") << "LR"
                           << "zurge 0" << talking;
    QTest::newRow("empty") << words("200 empty") << "LR"
                           << "zurge 0" << empty;
    QTest::newRow("no status") << words("200 {\"data\":{}}") << "LR"
                               << "zurge 0" << talking;
    QTest::newRow("a status that is none") << words("200 {\"status\":200.5}") << "LR"
                                           << "zurge 0" << talking;
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

void ClientCommunicationTest::reportsEveryCode_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("message");
    QTest::newRow("200") << 200 << "Success.";
    QTest::newRow("205") << 205 << "Success.";
    QTest::newRow("300") << 300 << "Account or computer unknown! Did you register?";
    QTest::newRow("301") << 301 << "Wrong password! Try again.";
    QTest::newRow("302") << 302
                         << "Activity throttled breached, this means your keys or clicks per "
                            "second is too high. Wait an hour or so to lower it and try again.";
    QTest::newRow("303") << 303 << "Wrong token, did you use this profile on another computer?";
    QTest::newRow("304") << 304
                         << "Requested username is already registered! Please choose another "
                            "username and try again.";
    QTest::newRow("305") << 305 << "Zurge throttled. You can only zurge every 60 seconds.";
    QTest::newRow("308") << 308 << "Organization not found.";
    QTest::newRow("400") << 400 << "Server is down due to maintenance, please try again later.";
    QTest::newRow("500") << 500 << "Internal server error. Please try again later.";
    QTest::newRow("501") << 501 << "Server error: Missing input! Please contact the developers.";
}

void ClientCommunicationTest::reportsEveryCode()
{
    QFETCH(int, code);
    const LogCapture log;
    Client client;
    client.service.expect({QStringLiteral("200"), QString::number(code)});
    client.ask(words("zurge"));
    QVERIFY(client.waitForEnds(1));
    QCOMPARE(client.ended, {QStringLiteral("zurge %1").arg(code)});
    QTEST(client.messages.first(), "message");
    const bool explained = code == 500 || code == 501;
    QCOMPARE(log.contains(QStringLiteral("Got error 500 back!")), explained);
    QCOMPARE(log.contains(QStringLiteral("Original request: zurge")), explained);
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
    QTest::qWait(20);
    QCOMPARE(client.service.envelopes.size(), orders.size() - 1);
    client.now += 1;
    client.ask(words("get_pending_messages"));
    QCOMPARE(client.ended, words("zurge -").join(QLatin1Char(' ')).split(QLatin1Char(',')));
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

void ClientCommunicationTest::followsTheAccount()
{
    Client client;
    AccountIdentity other = Someone;
    other.userId = 43;
    client.service.expect(words("silent"));
    client.ask(words("zurge"));
    QVERIFY(client.waitForRequests(1));
    // The answer to the sign-in of the account before is of no use.
    client.communication.setIdentity(other);
    client.service.answerLate(R"({"status":200,"data":{"client_token":"of-the-other"}})");
    QVERIFY(client.waitForEnds(1));
    QCOMPARE(client.spoken(), QStringLiteral("client_login client_login zurge"));
    QCOMPARE(client.service.envelopes.last()[QLatin1String("client_token")].toString(),
             QStringLiteral("token-1"));
    client.service.expect(words("silent"));
    client.ask(words("zurge refresh_account_info"));
    QVERIFY(client.waitForRequests(4));
    client.communication.setIdentity({});
    client.service.answerLate(R"({"status":200})");
    QVERIFY(client.waitForEnds(3));
    QCOMPARE(client.ended.last(), QStringLiteral("refresh_account_info 0"));
    QCOMPARE(client.service.envelopes.size(), 4);
}

void ClientCommunicationTest::sendsEveryOperation_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<bool>("needsAccount");
    using Communication = ClientCommunication;
    const auto row = [](const char* type, const Operation& operation, QByteArray data = "{}",
                        bool needsAccount = true) {
        QTest::newRow(type) << operation << QString::fromLatin1(type) << data << needsAccount;
    };
    const QVariantMap map{{QStringLiteral("a"), 1}};
    const QVariantList list{map};
    const QString uid = QStringLiteral("u-i-d");
    const QByteArray uidData = R"({"client_uid":"u-i-d","organization_id":"o"})";
    const auto free = [&row](const char* type, const Operation& operation, QByteArray data) {
        row(type, operation, std::move(data), false);
    };
    free(
        "client_init_authorization",
        [uid](Communication& c) { return c.initClientAuthorization(uid, QStringLiteral("o")); },
        uidData);
    free(
        "client_check_authorization",
        [uid](Communication& c) { return c.checkClientAuthorization(uid, QStringLiteral("o")); },
        uidData);
    row(
        "zurge",
        [](Communication& c) {
            return c.doZurge({.token = QStringLiteral("z"),
                              .keys = 18'446'744'073'709'551'615U,
                              .clicks = 2,
                              .uptimeSeconds = 3,
                              .downloadMiB = 4,
                              .uploadMiB = 5,
                              .scrolls = 6,
                              .distanceInches = 7,
                              .applications = {},
                              .timeSeries = {}});
        },
        R"({"clickcount":"2","distance_inches":"7","download":"4",)"
        R"("keycount":"18446744073709551615","scrolls":"6","token":"z","upload":"5",)"
        R"("uptime":"3","zurge_mechanism":"manual"})");
    row(
        "zurge",
        [map, list](Communication& c) {
            return c.doZurge(
                {.token = {}, .automatic = true, .applications = list, .timeSeries = map});
        },
        R"({"applications":[{"a":1}],"clickcount":"0","distance_inches":"0","download":"0",)"
        R"("keycount":"0","scrolls":"0","time_series":{"a":1},"token":"","upload":"0",)"
        R"("uptime":"0","zurge_mechanism":"auto"})");
    row("get_pending_messages", &Communication::getPendingMessagesFromWebsite);
    row("reset_token", &Communication::resetToken);
    row("refresh_account_info", &Communication::refreshAccountInfo);
    free("testproxy", &Communication::testProxy, "{}");
    row("get_db_backup_upload_url", &Communication::getDatabaseBackupUploadURL);
    row(
        "get_db_backup_download_url",
        [](Communication& c) { return c.getDatabaseBackupDownloadURL(QStringLiteral("b.zip")); },
        R"({"filename":"b.zip"})");
    free(
        "update_request",
        [](Communication& c) { return c.logUpdateRequest(QStringLiteral("9.0.1")); },
        R"({"computer_id":7,"current_version":"VERSION","os":"linux",)"
        R"("target_version":"9.0.1","user_id":42})");
    const auto oneField = [&row](const char* type, auto operation, const auto& argument,
                                 const QByteArray& field) {
        row(
            type, [=](Communication& c) { return (c.*operation)(argument); },
            "{\"" + field + "\":" +
                (argument.size() == 1 &&
                         std::is_same_v<std::decay_t<decltype(argument)>, QVariantMap>
                     ? R"({"a":1})"
                     : R"([{"a":1}])") +
                "}");
    };
    oneField("sync_client_profiles", &Communication::syncClientProfiles, list, "profiles");
    oneField("upload_heatmap_keyboard", &Communication::uploadKeyboardHeatmap, map,
             "keyboard_heatmap");
    oneField("upload_heatmap_keyboard_apps", &Communication::uploadKeyboardHeatmapApps, map,
             "keyboard_heatmap_apps");
    oneField("upload_heatmap_keycombinations", &Communication::uploadKeyCombinationsHeatmap, map,
             "keycombinations_heatmap");
    oneField("upload_heatmap_keycombinations_apps",
             &Communication::uploadKeyCombinationsHeatmapApps, map, "keycombinations_heatmap_apps");
    oneField("upload_heatmap_buttons", &Communication::uploadButtonsHeatmap, map,
             "buttons_heatmap");
    oneField("upload_heatmap_buttons_apps", &Communication::uploadButtonsHeatmapApps, map,
             "buttons_heatmap_apps");
    oneField("upload_applications", &Communication::uploadApplications, list, "applications");
    oneField("save_client_settings", &Communication::uploadApplicationSettings, map,
             "client_settings");
    oneField("upload_computerinfo", &Communication::uploadComputerInfo, map, "computer_info");
    free(
        "upload_usage_stats",
        [map, list](Communication& c) { return c.uploadUsageStats(map, list); },
        R"({"client_language":"en","client_version":"VERSION","computer":"desk","computerid":7,)"
        R"("events":[{"a":1}],"lang":"LANG","os":"linux","userid":42,"username":"me",)"
        R"("window_open_times":{"a":1}})");
    for (const char* kind : {"keyboard_image", "mouse_image", "database_file", "holiday"}) {
        const QByteArray sent = qstrcmp(kind, "holiday") == 0 ? "unknown" : kind;
        row(
            "upload_file",
            [kind](Communication& c) {
                return c.uploadFile(QStringLiteral("/etc/hostname"), QString::fromLatin1(kind));
            },
            "{\"type_upload\":\"" + sent + "\"}");
    }
}

void ClientCommunicationTest::sendsEveryOperation()
{
    QFETCH(Operation, operation);
    QFETCH(QString, type);
    QFETCH(QByteArray, data);
    QFETCH(bool, needsAccount);
    Client client;
    QVERIFY(operation(client.communication));
    QVERIFY(client.waitForEnds(1));
    QCOMPARE(client.ended.first(), type + QStringLiteral(" 200"));
    QCOMPARE(client.spoken(), (needsAccount ? QStringLiteral("client_login ") : QString()) + type);
    data.replace("VERSION", versionString().toUtf8());
    data.replace("LANG", QLocale::system().name().toUtf8());
    const QJsonObject sent = client.service.envelopes.last()[QLatin1String("data")].toObject();
    QCOMPARE(QJsonDocument(sent).toJson(QJsonDocument::Compact), data);

    const LogCapture log;
    Client stranger((AccountIdentity()));
    QCOMPARE(operation(stranger.communication), !needsAccount);
    QCOMPARE(log.contains(QStringLiteral("Trying to do request (%1) while user is not logged in "
                                         "yet, blocking.")
                              .arg(type)),
             needsAccount);
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

void ClientCommunicationTest::wrapsRequestsInTheEnvelope()
{
    Client client;
    client.ask(words("zurge"));
    QVERIFY(client.waitForEnds(1));
    const auto text = [&client](int index) {
        return QJsonDocument(client.service.envelopes.at(index)).toJson(QJsonDocument::Compact);
    };
    const QByteArray version = versionString().toUtf8();
    QCOMPARE(text(0), R"({"action":"client_login","client_version":")" + version +
                          R"(","data":{"computerid":7,"passwordhash":"5a1fhash","userid":42},)"
                          R"("type_os":"linux"})");
    QCOMPARE(text(1), R"({"action":"zurge","client_token":"token-1","client_version":")" + version +
                          R"(","data":{},"type_os":"linux"})");
}

void ClientCommunicationTest::logsNoSecret()
{
    const LogCapture log(Log::Level::Trace);
    Client client;
    client.service.expect(words("200 500"));
    client.communication.doZurge(
        {.token = QStringLiteral("zurgesecret"), .applications = {}, .timeSeries = {}});
    client.communication.checkClientAuthorization(QStringLiteral("uidsecret"), {});
    client.service.expect({QStringLiteral(
        R"({"status":200,"data":{"passwordhash":"5a1fhash","token":"zurgesecret"}})")});
    QVERIFY(client.waitForEnds(2));
    QVERIFY(log.contains(QStringLiteral("with input data: ")));
    for (const char* secret : {"5a1fhash", "token-1", "zurgesecret", "uidsecret"}) {
        QVERIFY2(!log.contains(QString::fromLatin1(secret)), secret);
    }
}

REGISTER_TEST(ClientCommunicationTest);
#include "ClientCommunicationTest.moc"
