// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/CaptureState.h"
#include "network/NetworkTrafficMonitor.h"

#include <QString>

#include <functional>
#include <memory>

class NetworkChanges;

/// Chooses the capture back-end, once, and asks it: the packet ring where this process may open
/// one, else libpcap with the kernel's counters beside it. Thread: main.
class NetworkCapture final
{
public:
    using MakeMonitor = std::function<std::unique_ptr<NetworkTrafficMonitor>()>;

    /// What there is to choose from; each is made only where it is needed.
    struct BackEnds
    {
        MakeMonitor packetRing;
        MakeMonitor pcap;
        MakeMonitor counters;
        std::function<bool()> isPcapMissing; ///< Asked once libpcap was looked for.
        QString command; ///< Would give the right to open the ring; empty where none would.
    };

    /// `root` is where "proc" and "sys" lie.
    explicit NetworkCapture(const QString& root);
    explicit NetworkCapture(BackEnds backEnds);
    NetworkCapture(const NetworkCapture&) = delete;
    NetworkCapture& operator=(const NetworkCapture&) = delete;
    ~NetworkCapture();

    void start(); ///< And writes the log line that says which back-end serves, and why.
    void stop();

    /// Follows interfaces that came or went, and addresses that changed; what the kernel announces
    /// is followed by itself.
    void updateNetworkDevices();

    /// Which back-end serves now; before the start, which one is expected to.
    CaptureState state() const;

    /// The one that captures packets.
    NetworkTrafficMonitor& packets() { return *m_packets; }

    /// What the counters saw while no thread captured; empty while one did, so that no byte is
    /// counted by both.
    QList<InterfaceBandwidth> takeInterfacesCounters();

private:
    enum class Packets
    {
        Ring,
        Pcap,
    };

    void beginCounters();

    bool isCapturing() const { return m_packets->countThreads() > 0; }

    QString reason() const;
    void logState();

    BackEnds m_backEnds;
    Packets m_kind = Packets::Ring; ///< What `m_packets` is.
    std::unique_ptr<NetworkTrafficMonitor> m_packets;
    std::unique_ptr<NetworkTrafficMonitor> m_counters; ///< Null beside a ring that works.
    std::unique_ptr<NetworkChanges> m_changes; ///< Beside libpcap: the ring follows them itself.
    bool m_isStarted = false;
    bool m_wasCapturing = false; ///< At the last take.
    QString m_lastLine;          ///< That the log was told.
};
