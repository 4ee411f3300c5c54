// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/Interface.h"
#include "network/NetworkPacketHandlerListener.h"
#include "network/TrafficCounters.h"

#include <QSet>
#include <QThread>

#include <memory>

struct pcap;
struct pcap_pkthdr;

/// Captures the TCP and UDP packets of one network interface through libpcap, and counts them.
///
///     constructed --start--> capturing --stop--> ended
///          |                     |                 ^
///          `--cannot be opened---`--dispatch fails-'
///
/// Thread: constructed, asked and destroyed on the main thread.
class PCapInterfaceThread final : public QThread, public NetworkPacketHandlerListener
{
    Q_OBJECT

public:
    /// Opens the capture; where that fails the log says why, and the thread has ended already.
    /// `localAddresses` are those of this machine.
    PCapInterfaceThread(const Interface& interface, const QSet<IpAddress>& localAddresses);
    ~PCapInterfaceThread() override;

    /// Makes the thread end, at once also where no packet comes; `wait` returns when it has.
    void stop();

    /// True once it was stopped or has failed.
    bool hasEnded() const;

    bool isCapturing() const { return isRunning() && !hasEnded(); }

    const Interface& interface() const { return m_interface; }

    /// Takes over what has changed of the same interface and of this machine's addresses.
    void update(const Interface& interface, const QSet<IpAddress>& localAddresses);

    TrafficCounters& counters() { return m_counters; }

    void incrementTraffic(bool upload, const IpAddress& remote, unsigned short localPort,
                          unsigned int bytes, unsigned int internetBytes, int interfaceIndex,
                          Utils::TrafficType type, unsigned short remotePort) override;

protected:
    void run() override;

private:
    using Handle = std::unique_ptr<pcap, void (*)(pcap*)>;

    static Handle open(const QString& name);
    static void packetCallback(unsigned char* thread, const pcap_pkthdr* header,
                               const unsigned char* frame);
    void handlePacket(const pcap_pkthdr& header, const unsigned char* frame);

    bool canContinue() const { return !hasEnded(); }

    void capture();
    void close();

    Interface m_interface;
    const QString m_name; ///< The interface's, for the thread itself.
    const int m_index;
    /// Its recursive mutex guards what follows as well.
    mutable TrafficCounters m_counters;
    QSet<IpAddress> m_localAddresses;
    Handle m_handle;
    bool m_hasEnded = false;
};
