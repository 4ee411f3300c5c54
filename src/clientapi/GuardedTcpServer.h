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
    QList<GuardedSocket*> m_open; ///< Whoever takes a pending connection owns it.
};
