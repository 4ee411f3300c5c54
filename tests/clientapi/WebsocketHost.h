// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "clientapi/ClientApiWebsocketServer.h"
#include "profiles/ProfileManager.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"

#include <QJsonDocument>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <QWebSocket>

/// A WebSocket server at a port of its own, and the profiles "Work" (1) and "Games" (2). Only one
/// may live at a time, as there is only one database.
class WebsocketHost
{
public:
    WebsocketHost()
    {
        const bool beats = timer->isActive();
        timer->stop();
        isReady = beats && server.listen(0) &&
                  database.exec(QStringLiteral("INSERT INTO profiles (name) VALUES ('Work'), "
                                               "('Games')"));
    }

    /// Ends with the beat over.
    void beat() const
    {
        timer->setSingleShot(true);
        timer->start(0);
        QTRY_VERIFY(!timer->isActive());
    }

    TestDatabase database;
    ProfileManager profiles;
    LogCapture log{Log::Level::Debug};
    int built = 0;   ///< Updates.
    QString padding; ///< Within each.
    ClientApiWebsocketServer server{[this] { return statistics(); }, profiles};

    /// The server's, stopped: a beat comes when a test wants one.
    QTimer* timer = server.findChild<QTimer*>();
    bool isReady = false;

private:
    QJsonObject statistics()
    {
        ++built;
        return {{QStringLiteral("padding"), padding}};
    }
};

/// A client that keeps what it is told: replies as they are, updates as "update".
class WebsocketClient
{
public:
    explicit WebsocketClient(const WebsocketHost& host,
                             const QString& address = QStringLiteral("127.0.0.1"),
                             const QString& origin = {}, const QByteArray& userAgent = "test")
        : m_socket(origin)
    {
        QObject::connect(&m_socket, &QWebSocket::textMessageReceived, &m_socket,
                         [this](const QString& text) { keep(text); });
        QNetworkRequest request(
            QUrl(QStringLiteral("ws://%1:%2").arg(address).arg(host.server.port())));
        request.setRawHeader("User-Agent", userAgent);
        m_socket.open(request);
    }

    bool isConnected() const { return m_socket.state() == QAbstractSocket::ConnectedState; }

    bool isEnded() const { return m_socket.state() == QAbstractSocket::UnconnectedState; }

    /// The code and the reason with which the server ended the connection.
    QString ending() const
    {
        return QStringLiteral("%1 %2").arg(m_socket.closeCode()).arg(m_socket.closeReason());
    }

    void send(const QString& text) { m_socket.sendTextMessage(text); }

    QStringList told;

private:
    void keep(const QString& text)
    {
        const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
        const bool isUpdate =
            object.value(QStringLiteral("action")) == QJsonValue(QStringLiteral("update-status")) &&
            object.value(QStringLiteral("data")).isObject() && object.size() == 2;
        told << (isUpdate ? QStringLiteral("update") : text);
    }

    QWebSocket m_socket;
};

/// The messages of a client.
namespace WebsocketMessages {

inline QString message(const char* action, const QString& more = {})
{
    return QStringLiteral(R"({"source":"plugin","action":"%1"%2})")
        .arg(QLatin1String(action), more);
}

inline QString activation(const char* name)
{
    return message("activate-profile",
                   QStringLiteral(R"(,"profile_name":"%1")").arg(QLatin1String(name)));
}

} // namespace WebsocketMessages
