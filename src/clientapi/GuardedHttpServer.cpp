// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/GuardedHttpServer.h"

#include "clientapi/GuardedSocket.h"
#include "clientapi/GuardedTcpServer.h"

#include <QHttpServerRequest>
#include <QHttpServerResponder>

#include <algorithm>
#include <utility>

namespace {

bool isLength(const QByteArray& text)
{
    constexpr qsizetype mostDigits = 18; // They fit into 64 bits, whatever they are.
    return text.size() <= mostDigits &&
           std::all_of(text.cbegin(), text.cend(), [](char c) { return c >= '0' && c <= '9'; });
}

/// Whether it is beyond doubt where the request ends (RFC 9112, section 6.3). Qt takes the body to
/// be empty where it does not understand its length, and what follows for the next request.
bool hasClearEnd(const QHttpServerRequest& request)
{
    const QByteArray coding = request.value("Transfer-Encoding");
    const QByteArray length = request.value("Content-Length");
    return coding.isEmpty() ? isLength(length) : coding.toLower() == "chunked" && length.isEmpty();
}

/// A request without Host is one of HTTP/1.0, whose answer ends with the connection.
bool isLastOfConnection(const QHttpServerRequest& request, const QHttpServerResponse& response)
{
    return response.hasHeader("Connection", "close") || request.value("Host").isEmpty() ||
           request.value("Connection").toLower().contains("close");
}

} // namespace

GuardedHttpServer::GuardedHttpServer(Handler handler, QObject* parent)
    : QAbstractHttpServer(parent)
    , m_handler(std::move(handler))
{
}

void GuardedHttpServer::serve(const QList<GuardedTcpServer*>& servers)
{
    for (GuardedTcpServer* server : servers) {
        bind(server);
    }
}

bool GuardedHttpServer::handleRequest(const QHttpServerRequest& request, QTcpSocket* socket)
{
    if (socket->state() != QAbstractSocket::ConnectedState) {
        return true; // It was told that there are no more answers.
    }
    if (!hasClearEnd(request)) {
        if (auto* connection = qobject_cast<GuardedSocket*>(socket)) {
            connection->drop(QStringLiteral("nobody can tell where its request ends"));
        }
        return true;
    }
    const QHttpServerResponse response = m_handler(request);
    response.write(makeResponder(request, socket));
    if (isLastOfConnection(request, response)) {
        socket->disconnectFromHost();
    }
    return true;
}

/// Never called: every request was handled.
void GuardedHttpServer::missingHandler(const QHttpServerRequest& /*request*/,
                                       QTcpSocket* /*socket*/)
{
}
