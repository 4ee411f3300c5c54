// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/FileDescriptor.h"
#include "network/IpAddress.h"
#include "network/NetworkPacketHandlerListener.h"
#include "network/PacketRing.h"

#include <QSet>
#include <QThread>

#include <atomic>
#include <chrono>
#include <cstddef>

class TrafficCounters;

/// Captures the packets of every Ethernet interface from one ring, in a thread of its own, from
/// `start()` until `stop()`.
///
/// Thread: all of it on the main thread but `run` and what it calls.
class PfRingThread final : public QThread, public NetworkPacketHandlerListener
{
    Q_OBJECT

public:
    /// Opens the ring; where that fails, the log says why, and the thread must not be started.
    /// `counters` is added to and must outlive this.
    explicit PfRingThread(TrafficCounters& counters);
    ~PfRingThread() override; ///< Stops.

    bool isOpen() const { return m_ring.isOpen() && m_wakeUp.isValid(); }

    /// Wakes the thread and returns when it has ended; what lay in the ring by then was counted.
    void stop();

    void setLocalAddresses(const QSet<IpAddress>& addresses);

    /// The packets that found the ring full, since the last call.
    quint64 takeDropped() { return m_ring.takeDropped(); }

    void incrementTraffic(bool upload, const IpAddress& remote, unsigned short localPort,
                          unsigned int bytes, unsigned int internetBytes, int interfaceIndex,
                          Utils::TrafficType type, unsigned short remotePort) override;

protected:
    void run() override;

private:
    std::size_t walk();
    std::size_t walkBatch();
    void handleFrame();
    bool isFillingFast() const;
    std::chrono::microseconds letFramesGather(std::chrono::microseconds duration);
    void waitForFrames();

    TrafficCounters& m_counters;
    QSet<IpAddress> m_ipAddresses; ///< This machine's; guarded by the counters' mutex.
    FileDescriptor m_wakeUp;       ///< An eventfd, readable once the thread shall end.
    PacketRing m_ring;
    std::size_t m_position = 0; ///< The frame that is filled next; of the capture thread.
    std::atomic<bool> m_stopRequested = false;
};
