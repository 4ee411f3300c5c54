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

#include <QJsonDocument>
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
    ClientCommunication::ZurgeRequest zurge;
    zurge.token = client.account.zurgeToken;
    zurge.keys = 1'000;
    zurge.clicks = 2;
    zurge.uptimeSeconds = 3;
    zurge.downloadMiB = 4;
    zurge.uploadMiB = 5;
    zurge.scrolls = 6;
    zurge.distanceInches = 63'360;
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
             R"({"clicks":2,"distance":1,"download":4,"keys":1000,"scrolls":6,"upload":5,)"
             R"("uptime":3})");
    QStringList mechanisms;
    for (const ServedRequest& served : client.service.requests()) {
        mechanisms << served.request.data()[QLatin1String("zurge_mechanism")].toString();
    }
    mechanisms.removeAll(QString());
    QCOMPARE(mechanisms, (QStringList{QStringLiteral("manual"), QStringLiteral("auto"),
                                      QStringLiteral("auto")}));
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
    /// The one field of the data of a request.
    const auto field = [&requests](const char* type) {
        return requests.value(QString::fromLatin1(type)).toMap().first();
    };
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
        communication.syncClientProfiles(field("sync_client_profiles").toList()),
        communication.uploadKeyboardHeatmap(field("upload_heatmap_keyboard").toMap()),
        communication.uploadKeyboardHeatmapApps(field("upload_heatmap_keyboard_apps").toMap()),
        communication.uploadKeyCombinationsHeatmap(field("upload_heatmap_keycombinations").toMap()),
        communication.uploadKeyCombinationsHeatmapApps(
            field("upload_heatmap_keycombinations_apps").toMap()),
        communication.uploadButtonsHeatmap(field("upload_heatmap_buttons").toMap()),
        communication.uploadButtonsHeatmapApps(field("upload_heatmap_buttons_apps").toMap()),
        communication.uploadApplications(field("upload_applications").toList()),
        communication.uploadApplicationSettings(field("save_client_settings").toMap()),
        communication.uploadComputerInfo(field("upload_computerinfo").toMap()),
        communication.uploadUsageStats({}, {}),
        communication.uploadFile(picture, QStringLiteral("keyboard_image")),
        communication.resetToken(),
    };
    QVERIFY(!accepted.contains(false));
    QVERIFY(client.waitForEnds(accepted.size()));
    QCOMPARE(
        client.ended.join(QLatin1Char(' ')),
        QStringLiteral("refresh_account_info 200 testproxy 200 get_db_backup_upload_url 200 "
                       "get_db_backup_download_url 501 update_request 200 sync_client_profiles 200 "
                       "upload_heatmap_keyboard 200 upload_heatmap_keyboard_apps 200 "
                       "upload_heatmap_keycombinations 200 upload_heatmap_keycombinations_apps 200 "
                       "upload_heatmap_buttons 200 upload_heatmap_buttons_apps 200 "
                       "upload_applications 200 save_client_settings 200 upload_computerinfo 200 "
                       "upload_usage_stats 200 upload_file 200 reset_token 200"));
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
