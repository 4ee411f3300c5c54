// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "service/ServiceCertificates.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QSslConfiguration>
#include <QSslServer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

#include <functional>
#include <memory>
#include <utility>

/// An HTTP/1.1 server on the loopback interface that keeps every request to the byte and answers
/// with whatever bytes, or none, a test says.
class WireServer : public QObject
{
public:
    using Answer = std::function<void(QTcpSocket& client, const QByteArray& request)>;

    /// Plain TCP.
    explicit WireServer(Answer answer)
        : WireServer(std::make_unique<QTcpServer>(), QStringLiteral("http"), std::move(answer))
    {
    }

    WireServer(const QSslConfiguration& tls, Answer answer)
        : WireServer(serverWith(tls), QStringLiteral("https"), std::move(answer))
    {
    }

    QString url(const QString& path = QStringLiteral("/api")) const
    {
        return QStringLiteral("%1://127.0.0.1:%2%3").arg(m_scheme).arg(port()).arg(path);
    }

    quint16 port() const { return m_server->serverPort(); }

    /// What is after the headers of a request.
    static QByteArray body(const QByteArray& request)
    {
        return request.mid(request.indexOf("\r\n\r\n") + 4);
    }

    static QByteArray header(const QByteArray& request, const QByteArray& name)
    {
        const QByteArray start = "\r\n" + name + ": ";
        const qsizetype at = request.indexOf(start);
        return at < 0 ? QByteArray() : request.sliced(at + start.size()).split('\r').constFirst();
    }

    static QByteArray reply(const QByteArray& content, const QByteArray& status = "200 OK",
                            const QByteArray& headers = {})
    {
        return "HTTP/1.1 " + status + "\r\n" + headers +
               "Content-Length: " + QByteArray::number(content.size()) + "\r\n\r\n" + content;
    }

    QList<QByteArray> requests; ///< In the order in which they were complete.
    int connections = 0;

private:
    WireServer(std::unique_ptr<QTcpServer> server, QString scheme, Answer answer)
        : m_server(std::move(server))
        , m_scheme(std::move(scheme))
        , m_answer(std::move(answer))
    {
        connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, this,
                [this] { accept(m_server->nextPendingConnection()); });
        (void)m_server->listen(QHostAddress::LocalHost);
    }

    static std::unique_ptr<QTcpServer> serverWith(const QSslConfiguration& tls)
    {
        auto server = std::make_unique<QSslServer>();
        server->setSslConfiguration(tls);
        return server;
    }

    void accept(QTcpSocket* client)
    {
        ++connections;
        auto received = std::make_shared<QByteArray>();
        const auto read = [this, client, received] {
            *received += client->readAll();
            while (isComplete(*received)) {
                const QByteArray request = std::exchange(*received, {});
                requests << request;
                m_answer(*client, request);
            }
        };
        connect(client, &QTcpSocket::readyRead, this, read);
        read();
    }

    static bool isComplete(const QByteArray& received)
    {
        const qsizetype end = received.indexOf("\r\n\r\n");
        return end >= 0 && received.size() - end - 4 >=
                               header(received.first(end + 2), "Content-Length").toLongLong();
    }

    std::unique_ptr<QTcpServer> m_server;
    QString m_scheme;
    Answer m_answer;
};

/// What a proxy does with a request that it lets through: joins its client with the place the
/// request names, and passes on what did not ask for a tunnel.
inline void passOn(QTcpSocket& client, const QByteArray& request)
{
    const bool isTunnel = request.startsWith("CONNECT ");
    const QString address = QString::fromLatin1(request.split(' ').value(1));
    const QUrl target(isTunnel ? QLatin1String("tcp://") + address : address);
    auto* const far = new QTcpSocket(&client);
    client.disconnect(SIGNAL(readyRead()));
    QObject::connect(&client, &QTcpSocket::readyRead, far,
                     [&client, far] { far->write(client.readAll()); });
    QObject::connect(far, &QTcpSocket::readyRead, &client,
                     [&client, far] { client.write(far->readAll()); });
    QObject::connect(far, &QTcpSocket::disconnected, &client,
                     [&client] { client.disconnectFromHost(); });
    far->connectToHost(target.host(), static_cast<quint16>(target.port()));
    if (isTunnel) {
        client.write("HTTP/1.1 200 Connection established\r\n\r\n");
    } else {
        far->write(request);
    }
}

/// What a server needs to speak TLS, with a certificate for another name, that nobody vouches for.
inline QSslConfiguration untrustedTls()
{
    const ServiceCertificates made = ServiceCertificates::make("DNS:service.example");
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setPrivateKey(made.serverKey);
    tls.setLocalCertificate(made.server);
    return tls;
}
