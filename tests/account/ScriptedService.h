// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "WireServer.h"
#include "account/AccountIdentity.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QPointer>
#include <QStringList>

inline const AccountIdentity Someone{.userId = 42,
                                     .computerId = 7,
                                     .email = QStringLiteral("me@tallyvane.example"),
                                     .userName = QStringLiteral("me"),
                                     .computer = QStringLiteral("desk"),
                                     .passwordHash = QStringLiteral("5a1fhash")};

/// A loopback account service that answers requests in turn, each as it was told beforehand, and
/// keeps what they said. Without orders left it succeeds, and hands out client tokens.
class ScriptedService
{
public:
    QString url() const { return m_server.url(); }

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
            send(*socket, body);
        }
    }

    QList<QJsonObject> envelopes; ///< Of the requests, as they came.

private:
    static QByteArray envelopeOf(const QByteArray& content)
    {
        if (const qsizetype part = content.indexOf("name=\"p\"\r\n\r\n"); part >= 0) {
            return QByteArray::fromBase64(content.mid(part + 12).split('\r').first());
        }
        const qsizetype field = content.indexOf("&p=") + 3;
        return QByteArray::fromBase64(
            QByteArray::fromPercentEncoding(content.mid(field).split('&').first()));
    }

    void answer(QTcpSocket& socket, const QByteArray& request)
    {
        envelopes << QJsonDocument::fromJson(envelopeOf(WireServer::body(request))).object();
        const QString order = m_orders.isEmpty() ? QStringLiteral("200") : m_orders.takeFirst();
        if (order == QLatin1String("drop")) {
            socket.abort();
        } else if (order == QLatin1String("silent")) {
            m_silent << &socket;
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

    static void send(QTcpSocket& socket, const QByteArray& body)
    {
        socket.write(WireServer::reply(body, "200 OK", "Connection: close\r\n"));
        socket.disconnectFromHost();
    }

    QStringList m_orders;
    QList<QPointer<QTcpSocket>> m_silent;
    int m_tokens = 0;
    WireServer m_server{
        [this](QTcpSocket& client, const QByteArray& request) { answer(client, request); }};
};
