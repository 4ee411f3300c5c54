// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/CountedRow.h"
#include "stats/NetworkStat.h"

#include <QList>

struct InterfaceBandwidth;
struct NetworkTraffic;

/// Files the bytes that cross each network interface, by hour and by second, and keeps the list of
/// the interfaces seen. Thread: main.
class InterfaceBandwidthStat : public NetworkStat
{
    Q_OBJECT

public:
    /// Prepares its statements; `Database`, `LocalStats` must exist.
    InterfaceBandwidthStat(AbstractSystem* system, QObject* parent);

    int getUpdateMilliSecondMod() const override;
    int getFrequentUpdateMilliSecond() const override;
    void doUpdate(QDateTime now, bool ui) override;

    /// Forgets the seconds that are more than an hour ago.
    void doInfrequentUpdate(QDateTime now, bool ui) override;

Q_SIGNALS:
    /// Bytes of all interfaces since the last take; also of a take that found none.
    void trafficTaken(quint64 download, quint64 upload);

private:
    void discardGathered() override;
    bool isCounted(const InterfaceBandwidth& bandwidth) const;
    NetworkTraffic fileAll(const QList<InterfaceBandwidth>& taken, int hour);
    void file(const InterfaceBandwidth& bandwidth, int hour);

    PreparedStatement m_replaceInterface;
    CountedRow m_hour;
    PreparedStatement m_insertSecond;
    PreparedStatement m_trimSeconds;
};
