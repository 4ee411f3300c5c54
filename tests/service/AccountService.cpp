// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/AccountService.h"

#include "service/AuthorizationPage.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QTcpSocket>

namespace {

const QString ApiPath = QStringLiteral("/api");
const QString PagePath = QStringLiteral("/dashboard/my/client/");
const QString ArchivePath = QStringLiteral("/backups/");
const QString ReleasePath = QStringLiteral("/release/");

HttpAnswer notFound()
{
    return {
        .status = 404, .contentType = QByteArrayLiteral("text/plain"), .body = "Nothing here.\n"};
}

HttpAnswer html(const QByteArray& page)
{
    return {.contentType = QByteArrayLiteral("text/html; charset=utf-8"), .body = page};
}

HttpAnswer bytes(const QByteArray& content)
{
    return {.contentType = QByteArrayLiteral("application/octet-stream"), .body = content};
}

QString faultName(const QString& releaseFile)
{
    static const QHash<QString, QString> names{
        {QStringLiteral("GeoIP.dat"), QStringLiteral("geoip_download")},
        {QStringLiteral("network-ports.csv"), QStringLiteral("download_networkportdescriptions")},
        {QStringLiteral("version.json"), QStringLiteral("version")}};
    return names.value(releaseFile);
}

void checkHeaders(const HttpRequest& request, ReceivedRequest& received)
{
    const QString agent = QStringLiteral("Tallyvane Client %1").arg(received.clientVersion);
    if (QString::fromUtf8(request.headers.value("user-agent")) != agent) {
        received.violations << QStringLiteral("the User-Agent is not \"%1\"").arg(agent);
    }
}

} // namespace

AccountService::AccountService(const QString& directory, Transport transport)
    : m_transport(transport)
    , m_releaseDirectory(directory + QStringLiteral("/release"))
    , m_database(directory + QStringLiteral("/service.db"))
    , m_store(m_database)
    , m_uploads(m_database)
    , m_archives(m_database, m_store)
    , m_protocol(m_store, m_uploads, m_archives)
    , m_listener(
          [this](const HttpRequest& request, QTcpSocket& socket) { handle(request, socket); })
{
    QDir().mkpath(m_releaseDirectory);
    if (transport == Transport::Tls) {
        m_certificates = ServiceCertificates::make();
        m_listener.sslSetup(m_certificates.server, m_certificates.serverKey);
    }
}

bool AccountService::start(quint16 port)
{
    m_port = m_listener.start(port);
    m_protocol.setArchiveAddress(websiteUrl() + QStringLiteral("/backups"));
    return m_port != 0;
}

void AccountService::stop()
{
    m_listener.stop();
}

bool AccountService::resume()
{
    return m_listener.start(m_port) == m_port;
}

QString AccountService::websiteUrl() const
{
    const QString scheme =
        m_transport == Transport::Tls ? QStringLiteral("https") : QStringLiteral("http");
    return QStringLiteral("%1://127.0.0.1:%2").arg(scheme).arg(m_port);
}

void AccountService::setReleaseFile(const QString& name, const QByteArray& content)
{
    QSaveFile file(m_releaseDirectory + QLatin1Char('/') + name);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() ||
        !file.commit()) {
        qFatal("Cannot write %s", qUtf8Printable(file.fileName()));
    }
}

QStringList AccountService::requestTypes() const
{
    QStringList types;
    for (const ServedRequest& served : m_requests) {
        types << served.request.type();
    }
    return types;
}

QStringList AccountService::violations() const
{
    QStringList all;
    for (const ServedRequest& served : m_requests) {
        for (const QString& violation : served.request.violations) {
            all << QStringLiteral("%1: %2").arg(served.request.type(), violation);
        }
    }
    return all;
}

void AccountService::forgetRequests()
{
    m_requests.clear();
}

void AccountService::handle(const HttpRequest& request, QTcpSocket& socket)
{
    if (request.path == ApiPath && request.method == "POST") {
        handleApi(request, socket);
    } else if (request.path.startsWith(PagePath)) {
        handlePage(request, socket);
    } else if (request.path.startsWith(ArchivePath)) {
        handleArchive(request, socket);
    } else if (request.path.startsWith(ReleasePath) && request.method == "GET") {
        handleRelease(request, socket);
    } else {
        HttpListener::send(socket, notFound());
    }
}

void AccountService::handleApi(const HttpRequest& request, QTcpSocket& socket)
{
    ReceivedRequest received = decodeRequest(request.headers.value("content-type"), request.body);
    checkHeaders(request, received);
    const Fault fault = m_faults.take(received.type());
    ServiceAnswer answer;
    ServedRequest entry{.request = {}, .fault = fault, .status = 0};
    if (fault.actsOnRequest()) {
        answer = m_protocol.answer(received);
        entry.status = answer.status;
    } else if (fault.kind == Fault::Kind::Status) {
        answer.status = fault.status;
        entry.status = answer.status;
    }
    if (received.file) {
        received.file->content.clear();
    }
    entry.request = received;
    m_requests.append(entry);
    deliver({.body = answer.json()}, fault, socket);
}

void AccountService::handlePage(const HttpRequest& request, QTcpSocket& socket)
{
    const QString clientUid = request.path.mid(PagePath.size());
    if (!m_store.isExpected(clientUid)) {
        HttpAnswer answer = html(AuthorizationPage::unknownClient());
        answer.status = 404;
        HttpListener::send(socket, answer);
    } else if (request.method == "POST") {
        QByteArray form = request.body;
        const QUrlQuery fields(QString::fromUtf8(form.replace('+', "%20")));
        const auto field = [&fields](const QString& name) {
            return fields.queryItemValue(name, QUrl::FullyDecoded);
        };
        const qint64 account = m_store.account(field(QStringLiteral("username")));
        m_store.agree(clientUid, m_store.computerNamed(account, field(QStringLiteral("computer"))));
        HttpListener::send(socket, html(AuthorizationPage::thanks()));
    } else {
        const QString computer =
            request.query.queryItemValue(QStringLiteral("name"), QUrl::FullyDecoded);
        HttpListener::send(socket,
                           html(AuthorizationPage::question(computer, m_store.userNames())));
    }
}

HttpAnswer AccountService::archiveAnswer(const HttpRequest& request)
{
    const QString ticket = request.path.mid(ArchivePath.size());
    if (request.method == "PUT") {
        return m_archives.put(ticket, request.body) ? bytes({}) : notFound();
    }
    const auto archive = m_archives.get(ticket);
    return archive ? bytes(*archive) : notFound();
}

void AccountService::handleArchive(const HttpRequest& request, QTcpSocket& socket)
{
    const bool put = request.method == "PUT";
    const Fault fault =
        m_faults.take(put ? QStringLiteral("backup_put") : QStringLiteral("backup_get"));
    HttpAnswer answer = bytes({});
    if (fault.actsOnRequest()) {
        answer = archiveAnswer(request);
    } else if (fault.kind == Fault::Kind::Status) {
        answer.status = fault.status;
    }
    deliver(answer, fault, socket);
}

void AccountService::handleRelease(const HttpRequest& request, QTcpSocket& socket)
{
    const QString name = request.path.mid(ReleasePath.size());
    QFile file(m_releaseDirectory + QLatin1Char('/') + name);
    if (name.contains(QLatin1Char('/')) || !file.open(QIODevice::ReadOnly)) {
        HttpListener::send(socket, notFound());
        return;
    }
    const Fault fault = m_faults.take(faultName(name));
    HttpAnswer answer = bytes(file.readAll());
    if (fault.kind == Fault::Kind::Status) {
        answer = {.status = fault.status};
    }
    deliver(answer, fault, socket);
}
