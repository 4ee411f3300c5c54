// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/CaptureState.h"
#include "network/NetworkTrafficMonitor.h"

#include <QString>

#include <memory>

/// Chooses the capture back-end, once, and asks it: the packet ring where this process may open
/// one, else libpcap with the kernel's counters beside it. Thread: main.
class NetworkCapture final
{
public:
    /// `root` is where "proc" and "sys" lie.
    explicit NetworkCapture(const QString& root);
    NetworkCapture(const NetworkCapture&) = delete;
    NetworkCapture& operator=(const NetworkCapture&) = delete;
    ~NetworkCapture();

    void start(); ///< And writes the log line that says which back-end serves, and why.
    void stop();
    void updateNetworkDevices();

    /// Which back-end serves now.
    CaptureState state() const;

    /// The one that captures packets; its counters answer too while no thread captures.
    NetworkTrafficMonitor& packets() { return *m_packets; }

    /// What the counters saw while no thread captured; empty while one did, so that no byte is
    /// counted by both.
    QList<InterfaceBandwidth> takeInterfacesCounters();

private:
    std::unique_ptr<NetworkTrafficMonitor> m_packets;  ///< The ring or libpcap.
    std::unique_ptr<NetworkTrafficMonitor> m_counters; ///< Null beside the ring.
};
