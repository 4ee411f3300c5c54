// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/HttpListener.h"

#include <QHttpServerRequest>
#include <QTcpServer>
#include <QTcpSocket>

namespace {

QByteArray methodName(QHttpServerRequest::Method method)
{
    switch (method) {
    case QHttpServerRequest::Method::Get:
        return QByteArrayLiteral("GET");
    case QHttpServerRequest::Method::Post:
        return QByteArrayLiteral("POST");
    case QHttpServerRequest::Method::Put:
        return QByteArrayLiteral("PUT");
    default:
        return {};
    }
}

} // namespace

HttpListener::HttpListener(const Handler& handler, QObject* parent)
    : QAbstractHttpServer(parent)
    , m_handler(handler)
{
}

quint16 HttpListener::start(quint16 port)
{
    const QList<QTcpServer*> known = servers();
    if (known.isEmpty()) {
        return listen(QHostAddress::LocalHost, port);
    }
    QTcpServer* const server = known.first();
    return server->isListening() || server->listen(QHostAddress::LocalHost, port)
               ? server->serverPort()
               : 0;
}

void HttpListener::stop()
{
    for (QTcpServer* const server : servers()) {
        server->close();
    }
}

bool HttpListener::handleRequest(const QHttpServerRequest& request, QTcpSocket* socket)
{
    HttpRequest received{.method = methodName(request.method()),
                         .path = request.url().path(),
                         .query = request.query(),
                         .headers = {},
                         .body = request.body()};
    for (const auto& [name, value] : request.headers()) {
        received.headers.insert(name.toLower(), value);
    }
    m_handler(received, *socket);
    return true;
}

void HttpListener::missingHandler(const QHttpServerRequest&, QTcpSocket*)
{
    // Every request has been handled.
}

QByteArray HttpListener::head(const HttpAnswer& answer, qint64 contentLength)
{
    // The reason phrase may be empty (RFC 9112, section 4).
    return "HTTP/1.1 " + QByteArray::number(answer.status) +
           " \r\nContent-Type: " + answer.contentType +
           "\r\nContent-Length: " + QByteArray::number(contentLength) + "\r\n\r\n";
}

void HttpListener::send(QTcpSocket& socket, const HttpAnswer& answer)
{
    socket.write(head(answer, answer.body.size()) + answer.body);
}
