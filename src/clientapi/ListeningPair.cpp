// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/ListeningPair.h"

#include "base/Log.h"
#include "clientapi/GuardedTcpServer.h"

#include <QHostAddress>

#include <memory>
#include <vector>

ListeningPair ListeningPair::open(quint16 port, const ConnectionLimits& limits, QObject* parent)
{
    ListeningPair pair;
    std::vector<std::unique_ptr<GuardedTcpServer>> listening;
    for (const auto family : {QHostAddress::AnyIPv4, QHostAddress::AnyIPv6}) {
        auto server = std::make_unique<GuardedTcpServer>(limits);
        if (server->listen(QHostAddress(family), port)) {
            port = server->serverPort();
            listening.push_back(std::move(server));
            continue;
        }
        pair.error = server->errorString();
        if (server->serverError() != QAbstractSocket::UnsupportedSocketOperationError) {
            return pair;
        }
        Log::info("[ClientApi] Not listening in one family of addresses: {}", pair.error);
    }
    for (auto& server : listening) {
        server->setParent(parent);
        pair.servers << server.release();
    }
    return pair;
}

quint16 ListeningPair::port() const
{
    return servers.isEmpty() ? 0 : servers.first()->serverPort();
}
