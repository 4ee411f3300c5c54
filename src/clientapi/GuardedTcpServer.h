// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "clientapi/ConnectionLimits.h"

#include <QList>
#include <QTcpServer>

class GuardedSocket;

/// Listens on the addresses of one family and makes every connection a `GuardedSocket`, as many as
/// the limits allow. Thread: main.
class GuardedTcpServer : public QTcpServer
{
    Q_OBJECT

public:
    explicit GuardedTcpServer(const ConnectionLimits& limits, QObject* parent = nullptr);

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    bool makeRoom();

    ConnectionLimits m_limits;
    QList<GuardedSocket*> m_open; ///< Owned by this server, as its pending connections.
};

/// A listening socket for IPv4 and one for IPv6, so that each client is known by the address a user
/// would write ("127.0.0.1", not "::ffff:127.0.0.1").
struct ListeningPair
{
    std::unique_ptr<GuardedTcpServer> v4;
    std::unique_ptr<GuardedTcpServer> v6; ///< Null where the machine has no IPv6.
};
