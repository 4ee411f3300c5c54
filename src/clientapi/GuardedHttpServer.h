// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractHttpServer>
#include <QHttpServerResponse>
#include <QList>

#include <functional>

class GuardedTcpServer;
class QHttpServerRequest;

/// An HTTP server whose every request is answered by one function, on connections that are
/// `GuardedSocket`s. Unlike Qt's own server with routes, it knows which connection a request came
/// by, and so can end it. Thread: main.
class GuardedHttpServer : public QAbstractHttpServer
{
    Q_OBJECT

public:
    /// Answers at once. A header "Connection: close" in the answer ends the connection after it.
    using Handler = std::function<QHttpServerResponse(const QHttpServerRequest&)>;

    explicit GuardedHttpServer(Handler handler, QObject* parent = nullptr);

    /// Serves the connections of these too, which become children of this object.
    void serve(const QList<GuardedTcpServer*>& servers);

protected:
    bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override;
    void missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) override;

private:
    Handler m_handler;
};
