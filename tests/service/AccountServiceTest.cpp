// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/AccountService.h"
#include "support/TestRegistry.h"
#include "support/Waiting.h"

#include <QJsonDocument>
#include <QTcpSocket>
#include <QTemporaryDir>

namespace {

using Kind = Fault::Kind;
using When = Fault::When;

const QString Zurge = QStringLiteral("zurge");

QByteArray encoded(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toBase64().toPercentEncoding();
}

/// A service with an account, and a zurge of five keys that was sent to it on a connection without
/// any library's help.
class RawZurge
{
public:
    RawZurge()
        : service(m_directory.path(), AccountService::Transport::Plain)
    {
    }

    void send(const QJsonObject& changes = {})
    {
        service.start();
        ServiceStore& store = service.store();
        m_account = store.account(QStringLiteral("ann"));
        const ServiceComputer computer = store.computerNamed(m_account, QStringLiteral("desk"));
        QJsonObject data{{QStringLiteral("token"), computer.zurgeToken},
                         {QStringLiteral("keycount"), QStringLiteral("5")},
                         {QStringLiteral("zurge_mechanism"), QStringLiteral("manual")}};
        for (const char* none :
             {"clickcount", "uptime", "download", "upload", "scrolls", "distance_inches"}) {
            data.insert(QLatin1String(none), QStringLiteral("0"));
        }
        for (auto change = changes.begin(); change != changes.end(); ++change) {
            data.insert(change.key(), change.value());
        }
        const QJsonObject envelope{{QStringLiteral("action"), Zurge},
                                   {QStringLiteral("client_token"), store.newClientToken(computer)},
                                   {QStringLiteral("client_version"), QStringLiteral("5.8.3474")},
                                   {QStringLiteral("data"), data},
                                   {QStringLiteral("type_os"), QStringLiteral("linux")}};
        const QJsonObject account{{QStringLiteral("user_id"), QString::number(m_account)},
                                  {QStringLiteral("computer_id"), QString::number(computer.id)},
                                  {QStringLiteral("password_hash"), computer.passwordHash}};
        const QByteArray body =
            "client_version=5.8.3474&p=" + encoded(envelope) + "&ci=" + encoded(account);
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

    qint64 keys() { return service.store().totals(m_account)[QLatin1String("keys")].toInteger(); }

private:
    QTemporaryDir m_directory;
    qint64 m_account = 0;

public:
    AccountService service;

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
    void refusesWrongTypes();
    void doesFaults_data();
    void doesFaults();
};

void AccountServiceTest::refusesWrongTypes()
{
    RawZurge zurge;
    zurge.send({{QStringLiteral("keycount"), 5},
                {QStringLiteral("time_series"),
                 QJsonObject{{QStringLiteral("2026-11-21_09_totals"), QJsonObject()}}}});
    QVERIFY(comesTrue([&] { return zurge.received().contains("\"status\":501"); }));
    QCOMPARE(zurge.keys(), 0);
    QCOMPARE(zurge.service.violations(),
             (QStringList{QStringLiteral("zurge: data.keycount is not a whole number as text"),
                          QStringLiteral("zurge: data.time_series has the name "
                                         "2026-11-21_09_totals")}));
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
    RawZurge zurge;
    fault.requestType = Zurge;
    zurge.service.faults().add(fault);
    zurge.send();
    QVERIFY(comesTrue([&] { return !zurge.service.requests().isEmpty(); }));
    QVERIFY(comesTrue([&] { return zurge.received().size() >= bytes; }));
    if (connection == Connection::Ends) {
        QVERIFY(comesTrue([&] { return !zurge.isOpen(); }));
    } else if (bytes == 0) {
        QTest::qWait(100);
    }
    QCOMPARE(zurge.isOpen(), connection == Connection::Stays);
    QVERIFY2(zurge.received().contains(pattern), zurge.received().left(1000).constData());
    QCOMPARE(zurge.received().isEmpty(), bytes == 0);
    QCOMPARE(zurge.service.violations(), QStringList());
    QCOMPARE(zurge.keys(), keys);
}

REGISTER_TEST(AccountServiceTest);
#include "AccountServiceTest.moc"
