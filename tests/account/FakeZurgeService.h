// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/LocalStats.h"
#include "account/Zurge.h"

/// The service's half of zurges, answering only when told to: a token that changes with each zurge
/// taken, and what was taken. Plain value, so that it can lie in memory that a killed client leaves
/// behind.
struct ZurgeLedger
{
    int token = 1;
    quint64 keys = 0; ///< Taken so far.

    static QString text(int token) { return QStringLiteral("token-%1").arg(token); }
};

class FakeZurgeService
{
public:
    using Map = QMap<QString, QVariant>;

    explicit FakeZurgeService(ZurgeLedger& ledger)
        : m_ledger(ledger)
    {
    }

    ZurgeService service()
    {
        return {.send =
                    [this](const ClientCommunication::ZurgeRequest& request) {
                        requests << request;
                        return accepts;
                    },
                .askAccountInfo =
                    [this] {
                        ++asked;
                        return accepts;
                    },
                .timeSeries = [] { return Map(); }};
    }

    /// Takes the last request, as the service does. False: its token is the wrong one.
    bool take() { return take(requests.constLast()); }

    bool take(const ClientCommunication::ZurgeRequest& request)
    {
        if (request.token != ZurgeLedger::text(m_ledger.token)) {
            return false;
        }
        m_ledger.keys += request.keys;
        ++m_ledger.token;
        return true;
    }

    Map zurgeAnswer() const
    {
        return {{QStringLiteral("token"), ZurgeLedger::text(m_ledger.token)},
                {QStringLiteral("new_totals"), figures()},
                {QStringLiteral("new_ranks"), figures()},
                {QStringLiteral("has_computer_info"), hasComputerInfo}};
    }

    Map accountInfo() const
    {
        return {{QStringLiteral("token"), ZurgeLedger::text(m_ledger.token)},
                {QStringLiteral("totals"), figures()},
                {QStringLiteral("ranks"), figures()}};
    }

    static Map figures()
    {
        Map figures;
        qint64 value = 1;
        for (const char* name :
             {"keys", "clicks", "download", "upload", "uptime", "scrolls", "distance"}) {
            figures.insert(QLatin1String(name), value++);
        }
        return figures;
    }

    QList<ClientCommunication::ZurgeRequest> requests;
    int asked = 0;
    bool accepts = true;
    bool hasComputerInfo = true;

private:
    ZurgeLedger& m_ledger;
};
