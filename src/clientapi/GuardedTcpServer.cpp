// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/GuardedTcpServer.h"

#include "base/Log.h"
#include "clientapi/GuardedSocket.h"

#include <QHostAddress>

#include <algorithm>
#include <memory>

GuardedTcpServer::GuardedTcpServer(const ConnectionLimits& limits, QObject* parent)
    : QTcpServer(parent)
    , m_limits(limits)
{
}

void GuardedTcpServer::incomingConnection(qintptr descriptor)
{
    auto socket = std::make_unique<GuardedSocket>(m_limits, this);
    if (!socket->setSocketDescriptor(descriptor)) {
        Log::warn("[ClientApi] A connection could not be taken: {}", socket->errorString());
        return;
    }
    if (!makeRoom()) {
        Log::info("[ClientApi] Refusing a connection from {}: {} are open",
                  socket->peerAddress().toString(), m_open.size());
        return;
    }
    // An answer goes out in several pieces: none waits until the one before is acknowledged.
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    GuardedSocket* connection = socket.release();
    m_open << connection;
    connect(connection, &QAbstractSocket::disconnected, this,
            [this, connection] { m_open.removeOne(connection); });
    connect(connection, &QObject::destroyed, this,
            [this, connection] { m_open.removeOne(connection); });
    addPendingConnection(connection);
}

/// A connection that is dropped counts no longer, though it ends only when the event loop runs.
bool GuardedTcpServer::makeRoom()
{
    if (m_open.size() < m_limits.connections) {
        return true;
    }
    if (m_limits.whenFull == ConnectionLimits::WhenFull::Refuse) {
        return false;
    }
    const auto idlest = std::max_element(m_open.begin(), m_open.end(), [](auto* one, auto* other) {
        return one->silence() < other->silence();
    });
    (*idlest)->drop(QStringLiteral("it was silent longest, and there are too many"));
    m_open.erase(idlest);
    return true;
}
