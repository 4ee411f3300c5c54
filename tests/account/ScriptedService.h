// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QPointer>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>

/// A loopback account service that answers requests in turn, each as it was told beforehand, and
/// keeps what they said. Without orders left it succeeds, and hands out client tokens.
class ScriptedService
{
public:
    ScriptedService()
    {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            QTcpSocket* socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, &m_server,
                             [this, socket] { read(socket); });
        });
    }

    QString url() const
    {
        return QStringLiteral("http://127.0.0.1:%1/").arg(m_server.serverPort());
    }

    /// Orders, one per request: a status; "drop" closes the connection, "empty" answers nothing,
    /// "silent" never answers; anything that begins with "{" is the answer itself.
    void expect(const QStringList& orders) { m_orders << orders; }

    QStringList actions() const
    {
        QStringList result;
        for (const QJsonObject& envelope : envelopes) {
            result << envelope[QLatin1String("action")].toString();
        }
        return result;
    }

    /// Answers the oldest request that was left without an answer.
    void answerLate(const QByteArray& body)
    {
        if (QPointer<QTcpSocket> socket = m_silent.takeFirst()) {
            send(socket, body);
        }
    }

    QList<QJsonObject> envelopes; ///< Of the requests, as they came.

private:
    void read(QTcpSocket* socket)
    {
        QByteArray& request = m_received[socket];
        request += socket->readAll();
        const qsizetype body = request.indexOf("\r\n\r\n") + 4;
        const QByteArray head = request.left(body).toLower();
        const qsizetype length = head.indexOf("content-length:") + 15;
        if (body < 4 || request.size() - body < head.mid(length).split('\r').first().toInt()) {
            return;
        }
        const QByteArray content = m_received.take(socket).mid(body);
        envelopes << QJsonDocument::fromJson(envelopeOf(content)).object();
        answer(socket);
    }

    static QByteArray envelopeOf(const QByteArray& content)
    {
        if (const qsizetype part = content.indexOf("name=\"p\"\r\n\r\n"); part >= 0) {
            return QByteArray::fromBase64(content.mid(part + 12).split('\r').first());
        }
        const qsizetype field = content.indexOf("&p=") + 3;
        return QByteArray::fromBase64(
            QByteArray::fromPercentEncoding(content.mid(field).split('&').first()));
    }

    void answer(QTcpSocket* socket)
    {
        const QString order = m_orders.isEmpty() ? QStringLiteral("200") : m_orders.takeFirst();
        if (order == QLatin1String("drop")) {
            socket->abort();
        } else if (order == QLatin1String("silent")) {
            m_silent << socket;
        } else if (order == QLatin1String("empty")) {
            send(socket, {});
        } else if (order.startsWith(QLatin1Char('{'))) {
            send(socket, order.toUtf8());
        } else {
            send(socket, plainAnswer(order.toInt()));
        }
    }

    QByteArray plainAnswer(int status)
    {
        QJsonObject data;
        if (actions().constLast() == QLatin1String("client_login")) {
            data[QLatin1String("client_token")] = QStringLiteral("token-%1").arg(++m_tokens);
        }
        return QJsonDocument(
                   QJsonObject{{QStringLiteral("status"), status}, {QStringLiteral("data"), data}})
            .toJson(QJsonDocument::Compact);
    }

    static void send(QTcpSocket* socket, const QByteArray& body)
    {
        socket->write("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " +
                      QByteArray::number(body.size()) + "\r\n\r\n" + body);
        socket->disconnectFromHost();
    }

    QTcpServer m_server;
    QStringList m_orders;
    QHash<QTcpSocket*, QByteArray> m_received;
    QList<QPointer<QTcpSocket>> m_silent;
    int m_tokens = 0;
};
