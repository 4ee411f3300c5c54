// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Utils.h"
#include "stats/CountedRow.h"
#include "stats/NetworkStat.h"

#include <QHash>

struct NetworkTraffic;

/// Files the bytes exchanged with each remote port and transport, by hour and profile. Thread:
/// main.
class ProtocolBandwidthStat : public NetworkStat
{
    Q_OBJECT

public:
    /// Prepares its statements; `Database` must exist.
    ProtocolBandwidthStat(AbstractSystem* system, QObject* parent);

    void doUpdate(QDateTime now, bool ui) override;

private:
    void discardGathered() override;
    void file(const QHash<unsigned short, NetworkTraffic>& taken, Utils::TrafficType type,
              int hour);

    CountedRow m_hour;
};
