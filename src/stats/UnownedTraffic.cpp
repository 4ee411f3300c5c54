// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/UnownedTraffic.h"

#include "base/Log.h"

void UnownedTraffic::add(unsigned short port, int profileId, const NetworkTraffic& traffic,
                         const QDateTime& now)
{
    const PortInProfile key{port, profileId};
    auto place = m_waiting.find(key);
    if (place == m_waiting.end()) {
        if (m_waiting.size() >= MostPorts) {
            drop(traffic);
            return;
        }
        place = m_waiting.insert(key, {{}, now.toMSecsSinceEpoch()});
    }
    place->traffic += traffic;
}

void UnownedTraffic::dropOld(const QDateTime& now)
{
    const qint64 nowMs = now.toMSecsSinceEpoch();
    m_waiting.removeIf([&](const auto& entry) {
        const Waiting& waiting = entry.value();
        const qint64 waitedMs = nowMs - waiting.sinceMs;
        const bool isOld = waitedMs < 0 || waitedMs > LongestWait.count();
        if (isOld) {
            drop(waiting.traffic);
        }
        return isOld;
    });
}

void UnownedTraffic::dropAll()
{
    for (const Waiting& waiting : std::exchange(m_waiting, {})) {
        drop(waiting.traffic);
    }
}

void UnownedTraffic::drop(const NetworkTraffic& traffic)
{
    ++m_droppedPorts;
    m_dropped += traffic;
}

void UnownedTraffic::reportDropped()
{
    if (m_droppedPorts > 0) {
        Log::debug("Dropped {} bytes downloaded and {} uploaded of {} ports without a known owner",
                   m_dropped.download, m_dropped.upload, m_droppedPorts);
        m_droppedPorts = 0;
        m_dropped = {};
    }
}

QSet<unsigned short> UnownedTraffic::ports() const
{
    QSet<unsigned short> ports;
    for (auto waiting = m_waiting.keyBegin(); waiting != m_waiting.keyEnd(); ++waiting) {
        ports.insert(waiting->first);
    }
    return ports;
}

ApplicationTraffic UnownedTraffic::takeOwned(const QHash<unsigned short, QString>& owners)
{
    ApplicationTraffic taken;
    m_waiting.removeIf([&](const auto& entry) {
        const auto& [port, profileId] = entry.key();
        const QString path = owners.value(port);
        if (path.isEmpty()) {
            return false;
        }
        taken[{path, profileId}] += entry.value().traffic;
        return true;
    });
    return taken;
}
