// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/BrowserAuthorization.h"
#include "account/ClientCommunication.h"
#include "account/JsonReader.h"
#include "account/LocalStats.h"
#include "account/WebsiteMessageCheck.h"
#include "account/WindowMessages.h"
#include "service/AccountService.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>
#include <QUrlQuery>

namespace {

/// A client that the user has linked to an account of a whole service, over TLS.
class LinkedClient
{
public:
    LinkedClient()
        : service(m_directory.path())
    {
        service.start();
        communication.setClientURL(service.apiUrl());
        QObject::connect(&communication, &ClientCommunication::requestDone, &communication,
                         [this](const QString& type, int status) {
                             ended << type + QLatin1Char(' ') + QString::number(status);
                         });
    }

    /// False where the service did not hand the account out.
    bool link()
    {
        BrowserAuthorization authorization(communication, QUrl(service.websiteUrl()));
        QSignalSpy pages(&authorization, &BrowserAuthorization::browserNeeded);
        QSignalSpy accounts(&authorization, &BrowserAuthorization::authorized);
        authorization.begin();
        if (!pages.wait()) {
            return false;
        }
        authorization.checkNow();
        if (!waitForEnds(2) || !accounts.isEmpty()) {
            return false;
        }
        ServiceStore& store = service.store();
        const QUrlQuery page(pages.first().first().toUrl());
        store.agree(page.queryItemValue(QStringLiteral("id")),
                    store.computerNamed(store.account(QStringLiteral("ann")),
                                        page.queryItemValue(QStringLiteral("name"))));
        authorization.checkNow();
        if (!accounts.wait()) {
            return false;
        }
        account = accounts.first().first().value<Authorization>();
        localStats.setIdentity(account.identity);
        communication.setIdentity(account.identity);
        ended.clear();
        return true;
    }

    bool waitForEnds(qsizetype count) const
    {
        return QTest::qWaitFor([&] { return ended.size() >= count; });
    }

private:
    QTemporaryDir m_directory;

public:
    TestDatabase database;
    AccountService service;
    LocalStats localStats;
    ClientCommunication communication;
    Authorization account;
    QStringList ended; ///< "TYPE STATUS".
};

} // namespace

/// The protocol against a service that checks every field of every request.
class AccountLinkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linksAndZurges();
    void sendsEveryRequestAsTheServiceExpectsIt();
};

void AccountLinkTest::linksAndZurges()
{
    LinkedClient client;
    QVERIFY(client.link());
    QCOMPARE(client.account.identity.userName, QStringLiteral("ann"));
    client.communication.doZurge({.token = client.account.zurgeToken,
                                  .keys = 1'000,
                                  .downloadMiB = 4,
                                  .applications = {},
                                  .timeSeries = {}});
    // The service forgets who is signed in while the requests wait.
    client.service.store().forgetClientTokens();
    client.communication.doZurge(
        {.token = client.account.zurgeToken, .keys = 1, .applications = {}, .timeSeries = {}});
    QVERIFY(client.waitForEnds(2));
    QCOMPARE(client.ended, (QStringList{QStringLiteral("zurge 200"), QStringLiteral("zurge 303")}));
    const QJsonObject totals = client.service.store().totals(client.account.identity.userId);
    QCOMPARE(totals[QLatin1String("keys")].toInteger(), 1'000);
    QCOMPARE(totals[QLatin1String("download")].toInteger(), 4);
    QCOMPARE(client.service.violations(), QStringList());
}

void AccountLinkTest::sendsEveryRequestAsTheServiceExpectsIt()
{
    LinkedClient client;
    QVERIFY(client.link());
    JsonReader reader;
    QVERIFY(reader.parse(
        readFile(QStringLiteral(TALLYVANE_SOURCE_DIR "/tests/service/requests.json"))));
    const QVariantMap requests = reader.result().toMap();
    QStringList expected;
    for (auto it = requests.cbegin(); it != requests.cend(); ++it) {
        QVERIFY(client.communication.clientRequest(it.key(), it.value().toMap(), {}, true, true));
        expected << it.key() + QStringLiteral(" 200");
    }
    const QString picture = client.database.directory() + QStringLiteral("/keys.png");
    QVERIFY(writeFile(picture, "\x89PNG"));
    QVERIFY(client.communication.uploadFile(picture, QStringLiteral("keyboard_image")));
    QVERIFY(client.communication.uploadUsageStats({}, {}));
    QVERIFY(client.communication.logUpdateRequest(QStringLiteral("9.0.1")));
    expected << QStringLiteral("upload_file 200") << QStringLiteral("upload_usage_stats 200")
             << QStringLiteral("update_request 200");
    QVERIFY(client.waitForEnds(expected.size()));
    QCOMPARE(client.ended, expected);
    QCOMPARE(client.service.violations(), QStringList());

    WindowMessages messages;
    messages.load();
    WebsiteMessageCheck check(client.communication, messages);
    client.service.store().addMessage(
        client.account.identity.userId,
        {{QStringLiteral("type"), QStringLiteral("news")},
         {QStringLiteral("text"), QStringLiteral("Hello")},
         {QStringLiteral("button_text"), QStringLiteral("Read")},
         {QStringLiteral("link"), QStringLiteral("https://www.tallyvane.example/news")}});
    QSignalSpy changes(&messages, &WindowMessages::changed);
    check.checkForMessagesFromWebsite();
    QVERIFY(changes.wait());
    QCOMPARE(messages.messages().size(), 1);
    QVERIFY(messages.messages().first().createdAt.isValid());
}

REGISTER_TEST(AccountLinkTest);
#include "AccountLinkTest.moc"
