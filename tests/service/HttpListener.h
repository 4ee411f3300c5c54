// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractHttpServer>
#include <QByteArray>
#include <QMap>
#include <QUrl>
#include <QUrlQuery>

#include <functional>

/// A request as it came. Plain value.
struct HttpRequest
{
    QByteArray method; ///< "GET", "POST", "PUT"; empty: another one.
    QString path;
    QUrlQuery query;
    QMap<QByteArray, QByteArray> headers; ///< By name in lower case.
    QByteArray body;
};

/// An answer to be. Plain value.
struct HttpAnswer
{
    int status = 200;
    QByteArray contentType = QByteArrayLiteral("application/json");
    QByteArray body = {};
};

/// A server on this machine's loopback address. Each request and its connection go to one function,
/// which may answer when it likes, or cut the connection. The connection belongs to the server and
/// is deleted when it ends. Bodies are held in memory, whole: Qt HttpServer knows no other way.
class HttpListener final : public QAbstractHttpServer
{
    Q_OBJECT

public:
    using Handler = std::function<void(const HttpRequest&, QTcpSocket&)>;

    explicit HttpListener(const Handler& handler, QObject* parent = nullptr);

    /// On the given port, or a free one for 0. Returns the port; 0 where it could not.
    quint16 start(quint16 port = 0);
    void stop(); ///< New connections are refused; `start` takes them again.

    static void send(QTcpSocket& socket, const HttpAnswer& answer);
    static QByteArray head(const HttpAnswer& answer, qint64 contentLength);

protected:
    bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override;
    void missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) override;

private:
    Handler m_handler;
};
