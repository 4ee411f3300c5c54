// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/AccountService.h"
#include "service/ServiceControl.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QSslConfiguration>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

namespace {

using Kind = Fault::Kind;
using When = Fault::When;

const QString Version = QStringLiteral("5.8.3474");

/// One client of the service, as a computer of an account.
class Client
{
public:
    Client(AccountService& service, const QString& userName)
        : m_service(service)
        , m_computer(service.store().computerNamed(service.store().account(userName),
                                                   QStringLiteral("desk")))
    {
        m_clientToken = service.store().newClientToken(m_computer);
    }

    const ServiceComputer& computer() const { return m_computer; }

    QByteArray body(const QString& type, const QJsonObject& data) const
    {
        const QJsonObject envelope{{QStringLiteral("action"), type},
                                   {QStringLiteral("client_token"), m_clientToken},
                                   {QStringLiteral("client_version"), Version},
                                   {QStringLiteral("data"), data},
                                   {QStringLiteral("type_os"), QStringLiteral("linux")}};
        const QJsonObject account{
            {QStringLiteral("user_id"), QString::number(m_computer.accountId)},
            {QStringLiteral("computer_id"), QString::number(m_computer.id)},
            {QStringLiteral("password_hash"), m_computer.passwordHash}};
        return "client_version=5.8.3474&p=" + encoded(envelope) + "&ci=" + encoded(account);
    }

    /// Over TLS, believing nobody but the service's authority.
    QJsonObject ask(const QString& type, const QJsonObject& data = {})
    {
        QNetworkRequest request(QUrl(m_service.apiUrl()));
        request.setHeader(QNetworkRequest::ContentTypeHeader,
                          QStringLiteral("application/x-www-form-urlencoded"));
        return QJsonDocument::fromJson(
                   finished(m_manager.post(prepared(request), body(type, data))))
            .object();
    }

    QByteArray get(const QUrl& url)
    {
        return finished(m_manager.get(prepared(QNetworkRequest(url))));
    }

    int put(const QUrl& url, const QByteArray& content)
    {
        finished(m_manager.put(prepared(QNetworkRequest(url)), content));
        return m_httpStatus;
    }

    QByteArray post(const QUrl& url, const QByteArray& form)
    {
        QNetworkRequest request(url);
        request.setHeader(QNetworkRequest::ContentTypeHeader,
                          QStringLiteral("application/x-www-form-urlencoded"));
        return finished(m_manager.post(prepared(request), form));
    }

private:
    static QByteArray encoded(const QJsonObject& object)
    {
        return QJsonDocument(object).toJson(QJsonDocument::Compact).toBase64().toPercentEncoding();
    }

    QNetworkRequest prepared(QNetworkRequest request) const
    {
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates({m_service.authority()});
        request.setSslConfiguration(tls);
        request.setHeader(QNetworkRequest::UserAgentHeader,
                          QStringLiteral("Tallyvane Client ") + Version);
        return request;
    }

    QByteArray finished(QNetworkReply* reply)
    {
        const std::unique_ptr<QNetworkReply> owned(reply);
        // Unlike QTest::qWaitFor, which sleeps between two looks, this lets megabytes flow.
        if (!QSignalSpy(reply, &QNetworkReply::finished).wait()) {
            return {};
        }
        m_httpStatus = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        return reply->readAll();
    }

    AccountService& m_service;
    ServiceComputer m_computer;
    QString m_clientToken;
    QNetworkAccessManager m_manager;
    int m_httpStatus = 0;
};

QJsonObject zurge(const QString& token, const QString& keys)
{
    const QString none = QStringLiteral("0");
    return {{QStringLiteral("token"), token},
            {QStringLiteral("keycount"), keys},
            {QStringLiteral("clickcount"), none},
            {QStringLiteral("uptime"), none},
            {QStringLiteral("download"), none},
            {QStringLiteral("upload"), none},
            {QStringLiteral("scrolls"), none},
            {QStringLiteral("distance_inches"), QStringLiteral("95040")},
            {QStringLiteral("zurge_mechanism"), QStringLiteral("manual")}};
}

qint64 keysAt(AccountService& service, const Client& client)
{
    return service.store()
        .totals(client.computer().accountId)
        .value(QLatin1String("keys"))
        .toInteger();
}

/// A connection without any library's help, on which one zurge was sent.
class RawZurge
{
public:
    RawZurge(const AccountService& service, const Client& client)
    {
        const QJsonObject data = zurge(client.computer().zurgeToken, QStringLiteral("5"));
        const QByteArray body = client.body(QStringLiteral("zurge"), data);
        m_socket.connectToHost(QStringLiteral("127.0.0.1"),
                               static_cast<quint16>(QUrl(service.apiUrl()).port()));
        m_socket.write("POST /api HTTP/1.1\r\nHost: x\r\nUser-Agent: Tallyvane Client 5.8.3474\r\n"
                       "Content-Type: application/x-www-form-urlencoded\r\nContent-Length: " +
                       QByteArray::number(body.size()) + "\r\n\r\n" + body);
    }

    bool isOpen() const { return m_socket.state() != QAbstractSocket::UnconnectedState; }

    const QByteArray& received()
    {
        m_received += m_socket.readAll();
        return m_received;
    }

private:
    QTcpSocket m_socket;
    QByteArray m_received;
};

} // namespace

/// The service for tests has to be right before anything can be measured by it.
class AccountServiceTest : public QObject
{
    Q_OBJECT

public:
    enum class Connection
    {
        Stays,
        Ends,
    };
    Q_ENUM(Connection)

private Q_SLOTS:
    void countsZurgeOnce();
    void takesEveryType_data();
    void takesEveryType();
    void refusesWrongTypes();
    void keepsBackups();
    void authorizesOnThePage();
    void doesFaults_data();
    void doesFaults();
    void repeatsSoak();
};

void AccountServiceTest::countsZurgeOnce()
{
    const QTemporaryDir directory;
    AccountService service(directory.path());
    QVERIFY(service.start());
    Client first(service, QStringLiteral("ann"));
    Client second(service, QStringLiteral("bob"));
    const QString type = QStringLiteral("zurge");
    const QJsonObject sent = zurge(first.computer().zurgeToken, QStringLiteral("9007199254740993"));

    const QJsonObject answer = first.ask(type, sent).value(QLatin1String("data")).toObject();
    const QString next = answer.value(QLatin1String("token")).toString();
    QCOMPARE(answer.value(QLatin1String("new_totals"))[QLatin1String("keys")].toInteger(),
             9007199254740993);
    QCOMPARE(answer.value(QLatin1String("new_totals"))[QLatin1String("distance")].toDouble(), 1.5);
    QCOMPARE(first.ask(type, sent).value(QLatin1String("status")).toInt(), 303);
    QCOMPARE(keysAt(service, first), 9007199254740993);
    QCOMPARE(first.ask(QStringLiteral("refresh_account_info"))
                 .value(QLatin1String("data"))[QLatin1String("token")]
                 .toString(),
             next);

    // A second account, with more keys and as much travel.
    const QJsonObject other =
        second.ask(type, zurge(second.computer().zurgeToken, QStringLiteral("9007199254740994")))
            .value(QLatin1String("data"))
            .toObject();
    const QJsonValue ranks = other.value(QLatin1String("new_ranks"));
    QCOMPARE(ranks[QLatin1String("keys")].toInt(), 1);
    QCOMPARE(ranks[QLatin1String("distance")].toInt(), 1);
    QCOMPARE(ranks[QLatin1String("clicks")].toInt(), 0);
    QCOMPARE(service.store().ranks(first.computer().accountId).value(QLatin1String("keys")).toInt(),
             2);
    QCOMPARE(service.violations(), QStringList());
}

void AccountServiceTest::takesEveryType_data()
{
    // One request of each type, but for those whose data a test has to make up.
    const QJsonObject requests =
        QJsonDocument::fromJson(
            readFile(QStringLiteral(TALLYVANE_SOURCE_DIR "/tests/service/requests.json")))
            .object();
    QTest::addColumn<QJsonObject>("data");
    QCOMPARE(requests.size(), 17);
    for (auto it = requests.begin(); it != requests.end(); ++it) {
        QTest::newRow(qUtf8Printable(it.key())) << it.value().toObject();
    }
}

void AccountServiceTest::takesEveryType()
{
    QFETCH(QJsonObject, data);
    const QTemporaryDir directory;
    AccountService service(directory.path());
    QVERIFY(service.start());
    Client client(service, QStringLiteral("ann"));
    const QString type = QString::fromLatin1(QTest::currentDataTag());
    const bool forgets = type == QLatin1String("reset_token");
    // Twice: an upload may be repeated, and is not added to itself.
    QCOMPARE(client.ask(type, data).value(QLatin1String("status")).toInt(), 200);
    QCOMPARE(client.ask(type, data).value(QLatin1String("status")).toInt(), forgets ? 600 : 200);
    QCOMPARE(service.violations(), QStringList());
    QCOMPARE(service.database().value(QStringLiteral("SELECT IFNULL(MAX(count), 7) FROM heatmaps")),
             QVariant(7));
}

void AccountServiceTest::refusesWrongTypes()
{
    const QTemporaryDir directory;
    AccountService service(directory.path());
    QVERIFY(service.start());
    Client client(service, QStringLiteral("ann"));
    QJsonObject data = zurge(client.computer().zurgeToken, QStringLiteral("5"));
    data.insert(QStringLiteral("keycount"), 5);
    data.insert(QStringLiteral("time_series"),
                QJsonObject{{QStringLiteral("2026-11-21_09_totals"), QJsonObject()}});
    QCOMPARE(client.ask(QStringLiteral("zurge"), data).value(QLatin1String("status")).toInt(), 501);
    QCOMPARE(keysAt(service, client), 0);
    QCOMPARE(service.violations(),
             (QStringList{QStringLiteral("zurge: data.keycount is not a whole number as text"),
                          QStringLiteral("zurge: data.time_series has the name "
                                         "2026-11-21_09_totals")}));
}

void AccountServiceTest::keepsBackups()
{
    const QTemporaryDir directory;
    AccountService service(directory.path());
    QVERIFY(service.start());
    Client client(service, QStringLiteral("ann"));
    const auto url = [&client](const QString& type, const QJsonObject& data) {
        return QUrl(
            client.ask(type, data).value(QLatin1String("data"))[QLatin1String("url")].toString());
    };
    const QByteArray archive(5 * 1024 * 1024, 'z');
    const QUrl target = url(QStringLiteral("get_db_backup_upload_url"), {});
    QCOMPARE(client.put(target, archive), 200);
    QCOMPARE(client.put(target, "again"), 404);

    const QJsonArray backups = client.ask(QStringLiteral("refresh_account_info"))
                                   .value(QLatin1String("data"))[QLatin1String("database_backups")]
                                   .toArray();
    QCOMPARE(backups.size(), 1);
    QCOMPARE(backups.at(0)[QLatin1String("size")].toInteger(), archive.size());
    const QUrl source =
        url(QStringLiteral("get_db_backup_download_url"),
            {{QStringLiteral("filename"), backups.at(0)[QLatin1String("filename")]}});
    QCOMPARE(client.get(source), archive);
    QCOMPARE(service.violations(), QStringList());
}

void AccountServiceTest::authorizesOnThePage()
{
    const QTemporaryDir directory;
    AccountService service(directory.path());
    QVERIFY(service.start());
    Client client(service, QStringLiteral("ann"));
    const QString uid = QStringLiteral("6f1c2a44-0b1d-4d3a-9a51-3e8f6f0d5c11");
    const QJsonObject data{{QStringLiteral("client_uid"), uid},
                           {QStringLiteral("organization_id"), QString()}};
    const auto check = [&client, &data] {
        return client.ask(QStringLiteral("client_check_authorization"), data);
    };
    QCOMPARE(check().value(QLatin1String("status")).toInt(), 300);
    client.ask(QStringLiteral("client_init_authorization"), data);
    QCOMPARE(check().value(QLatin1String("data")).toObject(), QJsonObject());

    QUrl page(service.websiteUrl() + QStringLiteral("/dashboard/my/client/") + uid);
    page.setQuery(QStringLiteral("id=%1&name=<desk>%20%26 more").arg(uid));
    QVERIFY(client.get(page).contains("value=\"&lt;desk&gt; &amp; more\""));
    QVERIFY(client.post(page, "username=J%C3%BCrg+K&computer=desk").contains("Linked"));
    const QJsonValue answer = check().value(QLatin1String("data"));
    QCOMPARE(answer[QLatin1String("username")].toString(), QStringLiteral("Jürg K"));
    QCOMPARE(answer[QLatin1String("computer")].toString(), QStringLiteral("desk"));
    QVERIFY(service.store().computer(answer[QLatin1String("userid")].toInteger(),
                                     answer[QLatin1String("computerid")].toInteger()));
}

void AccountServiceTest::doesFaults_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QByteArray>("pattern"); ///< Of what arrives.
    QTest::addColumn<qsizetype>("bytes");    ///< At least so many; 0: none at all.
    QTest::addColumn<Connection>("connection");
    QTest::addColumn<qint64>("keys"); ///< What the service has counted of the 5.
    const auto row = [](const char* name, const Fault& fault, const QByteArray& pattern,
                        qsizetype bytes, qint64 keys, Connection connection = Connection::Stays) {
        QTest::newRow(name) << fault << pattern << bytes << connection << keys;
    };
    row("none", {}, "\"status\":200", 200, 5);
    row("late", {.delayMs = 50}, "\"status\":200", 200, 5);
    row("status", {.kind = Kind::Status, .status = 400}, "\"status\":400", 90, 0);
    row("drop before", {.kind = Kind::Drop, .when = When::BeforeActing}, "", 0, 0,
        Connection::Ends);
    row("drop after", {.kind = Kind::Drop}, "", 0, 5, Connection::Ends);
    row("empty", {.kind = Kind::Empty}, "Content-Length: 0\r\n\r\n", 60, 5);
    row("truncated", {.kind = Kind::Truncated}, "\"data\":", 150, 5, Connection::Ends);
    row("huge", {.kind = Kind::Huge, .when = When::BeforeActing}, "Content-Length: 34603008",
        34603008, 0);
    row("base64", {.kind = Kind::Base64}, QByteArrayLiteral("{\"data\":{\"has").toBase64().left(16),
        300, 5);
    row("no JSON", {.kind = Kind::NotJson}, "<html>", 100, 5);
    row("no data", {.kind = Kind::NoData}, "{\"data\":{},\"status\":200}", 90, 5);
    row("wrong types", {.kind = Kind::WrongTypes}, "\"keys\":{\"value\":5}", 300, 5);
    row("negative", {.kind = Kind::Negative}, "\"keys\":-5", 300, 5);
    row("hang", {.kind = Kind::Hang}, "", 0, 5);
}

void AccountServiceTest::doesFaults()
{
    QFETCH(Fault, fault);
    QFETCH(QByteArray, pattern);
    QFETCH(qsizetype, bytes);
    QFETCH(Connection, connection);
    QFETCH(qint64, keys);
    const QTemporaryDir directory;
    AccountService service(directory.path(), AccountService::Transport::Plain);
    QVERIFY(service.start());
    const Client client(service, QStringLiteral("ann"));
    fault.requestType = QStringLiteral("zurge");
    service.faults().add(fault);

    RawZurge sent(service, client);
    QTRY_COMPARE(service.requestTypes(), QStringList{QStringLiteral("zurge")});
    QTRY_VERIFY(sent.received().size() >= bytes);
    if (connection == Connection::Ends) {
        QTRY_VERIFY(!sent.isOpen());
    } else if (bytes == 0) {
        QTest::qWait(100);
    }
    QCOMPARE(sent.isOpen(), connection == Connection::Stays);
    QVERIFY2(sent.received().contains(pattern), sent.received().left(1000).constData());
    QCOMPARE(sent.received().isEmpty(), bytes == 0);
    QCOMPARE(service.violations(), QStringList());
    QCOMPARE(keysAt(service, client), keys);
    QCOMPARE(service.faults().ordered(), 0);
}

void AccountServiceTest::repeatsSoak()
{
    const auto kinds = [] {
        ServiceFaults faults;
        faults.soak(7, 0.5);
        QList<Kind> taken;
        for (int i = 0; i < 200; ++i) {
            taken << faults.take(QStringLiteral("zurge")).kind;
        }
        return taken;
    };
    QCOMPARE(kinds(), kinds());
    const auto whole = kinds().count(Kind::None);
    QVERIFY(whole > 80 && whole < 140);
}

REGISTER_TEST(AccountServiceTest);
#include "AccountServiceTest.moc"
