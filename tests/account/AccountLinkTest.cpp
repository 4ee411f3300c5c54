// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/BrowserAuthorization.h"
#include "account/ClientCommunication.h"
#include "account/LocalStats.h"
#include "account/WebsiteMessageCheck.h"
#include "account/WindowMessages.h"
#include "service/AccountService.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"
#include "support/Waiting.h"

#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>

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
        if (!comesTrue([&] { return !pages.isEmpty(); })) {
            return false;
        }
        authorization.checkNow();
        if (!waitForEnds(2) || !accounts.isEmpty()) {
            return false;
        }
        if (!pushTheButton(pages.first().first().toUrl())) {
            return false;
        }
        authorization.checkNow();
        if (!comesTrue([&] { return !accounts.isEmpty(); })) {
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
        return comesTrue([&] { return ended.size() >= count; });
    }

private:
    /// As the browser does on the page, believing nobody but the service's authority.
    bool pushTheButton(const QUrl& page) const
    {
        QNetworkRequest request(page);
        request.setHeader(QNetworkRequest::ContentTypeHeader,
                          QStringLiteral("application/x-www-form-urlencoded"));
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates({service.authority()});
        request.setSslConfiguration(tls);
        QNetworkAccessManager browser;
        const std::unique_ptr<QNetworkReply> reply(
            browser.post(request, QByteArray("username=J%C3%BCrg+K&computer=desk")));
        return comesTrue([&] { return reply->isFinished(); }) &&
               reply->readAll().contains("Linked");
    }

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
    void sendsRequestsAsTheServiceExpectsThem();
};

void AccountLinkTest::linksAndZurges()
{
    LinkedClient client;
    QVERIFY(client.link());
    QCOMPARE(client.account.identity.userName, QStringLiteral("Jürg K"));
    ClientCommunication::ZurgeRequest zurge;
    zurge.token = client.account.zurgeToken;
    zurge.keys = 9'007'199'254'740'993; // More than a double holds.
    zurge.clicks = 2;
    zurge.uptimeSeconds = 3;
    zurge.downloadMiB = 4;
    zurge.uploadMiB = 5;
    zurge.scrolls = 6;
    zurge.distanceInches = 95'040;
    QVERIFY(client.communication.doZurge(zurge));
    // The service forgets who is signed in, and the token is good for one zurge.
    QVERIFY(client.waitForEnds(1));
    client.service.store().forgetClientTokens();
    zurge.automatic = true;
    QVERIFY(client.communication.doZurge(zurge));
    QVERIFY(client.waitForEnds(2));
    QCOMPARE(client.ended, (QStringList{QStringLiteral("zurge 200"), QStringLiteral("zurge 303")}));
    QCOMPARE(QJsonDocument(client.service.store().totals(client.account.identity.userId))
                 .toJson(QJsonDocument::Compact),
             R"({"clicks":2,"distance":1.5,"download":4,"keys":9007199254740993,"scrolls":6,)"
             R"("upload":5,"uptime":3})");
    ServiceStore& store = client.service.store();
    const ServiceComputer other =
        store.computerNamed(store.account(QStringLiteral("bob")), QStringLiteral("desk"));
    QVERIFY(store.takeZurge(other.id, {.token = other.zurgeToken, .counts = {1, 3}}));
    const QJsonObject ranks = store.ranks(client.account.identity.userId);
    QCOMPARE(ranks[QLatin1String("keys")].toInt(), 1);
    QCOMPARE(ranks[QLatin1String("clicks")].toInt(), 2);
    QCOMPARE(store.ranks(other.accountId)[QLatin1String("uptime")].toInt(), 0); // None.
    QStringList mechanisms;
    for (const ServedRequest& served : client.service.requests()) {
        mechanisms << served.request.data()[QLatin1String("zurge_mechanism")].toString();
    }
    mechanisms.removeAll(QString());
    QCOMPARE(mechanisms, (QStringList{QStringLiteral("manual"), QStringLiteral("auto"),
                                      QStringLiteral("auto")}));
    QCOMPARE(client.service.violations(), QStringList());
}

void AccountLinkTest::sendsRequestsAsTheServiceExpectsThem()
{
    LinkedClient client;
    QVERIFY(client.link());
    const QString picture = client.database.directory() + QStringLiteral("/keys.png");
    QVERIFY(writeFile(picture, "\x89PNG"));
    ClientCommunication& communication = client.communication;
    client.service.forgetRequests();
    const QList<bool> accepted{
        communication.refreshAccountInfo(),
        communication.testProxy(),
        communication.getDatabaseBackupUploadURL(),
        communication.getDatabaseBackupDownloadURL(QStringLiteral("none.zip")),
        communication.logUpdateRequest(QStringLiteral("9.0.1")),
        communication.uploadFile(picture, QStringLiteral("keyboard_image")),
        communication.resetToken(),
    };
    QVERIFY(!accepted.contains(false));
    QVERIFY(client.waitForEnds(accepted.size()));
    QCOMPARE(client.ended.join(QLatin1Char(' ')),
             QStringLiteral("refresh_account_info 200 testproxy 200 get_db_backup_upload_url 200 "
                            "get_db_backup_download_url 501 update_request 200 upload_file 200 "
                            "reset_token 200"));
    QCOMPARE(client.service.database().value(QStringLiteral("SELECT content FROM uploads")),
             QVariant(QByteArray("\x89PNG")));
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
    check.checkForMessagesFromWebsite();
    QVERIFY(comesTrue([&] { return messages.messages().size() == 1; }));
    QVERIFY(messages.messages().first().createdAt.isValid());
}

REGISTER_TEST(AccountLinkTest);
#include "AccountLinkTest.moc"
