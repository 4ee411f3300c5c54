// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/PfRingNetworkTrafficMonitor.h"

#include "base/FileDescriptor.h"
#include "base/Log.h"
#include "network/LocalAddresses.h"
#include "network/NetworkChanges.h"
#include "network/NetworkInterfaces.h"
#include "network/PfRingThread.h"

#include <QDir>

#include <sys/socket.h>

#include <algorithm>

namespace {

constexpr std::chrono::minutes DropWarningPause{1};

bool canOpenPacketSocket()
{
    const FileDescriptor probe(socket(AF_PACKET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!probe.isValid()) {
        Log::info("PF_PACKET is not available.");
    }
    return probe.isValid();
}

} // namespace

PfRingNetworkTrafficMonitor::PfRingNetworkTrafficMonitor(const QString& root, QObject* parent)
    : QObject(parent)
    , m_sysClassNet(QDir(root).filePath(QStringLiteral("sys/class/net")))
    , m_isSupported(canOpenPacketSocket())
    , m_dropped(DropWarningPause)
{
}

PfRingNetworkTrafficMonitor::~PfRingNetworkTrafficMonitor()
{
    if (isRunning()) {
        stop();
    }
}

void PfRingNetworkTrafficMonitor::start()
{
    Log::info("Starting PfRingNetworkTrafficMonitor..");
    if (!m_isSupported || isRunning()) {
        return;
    }
    auto thread = std::make_unique<PfRingThread>(m_counters);
    if (!thread->isOpen()) {
        return;
    }
    m_thread = std::move(thread);
    watchNetwork();
    m_thread->start();
}

void PfRingNetworkTrafficMonitor::stop()
{
    Log::info("Stopping PfRingNetworkTrafficMonitor..");
    if (!isRunning()) {
        return;
    }
    m_changes.reset();
    m_thread->stop();
    m_emptiedBefore += m_thread->timesEmptied();
    m_dropped.add(m_thread->takeDropped());
    m_dropped.report();
    m_thread.reset();
}

bool PfRingNetworkTrafficMonitor::isRunning() const
{
    return m_thread != nullptr;
}

int PfRingNetworkTrafficMonitor::countThreads() const
{
    return isRunning() ? 1 : 0;
}

/// Watched before it is read, so that nothing can change in between unseen.
void PfRingNetworkTrafficMonitor::watchNetwork()
{
    m_changes = std::make_unique<NetworkChanges>();
    connect(m_changes.get(), &NetworkChanges::changed, this,
            &PfRingNetworkTrafficMonitor::updateNetworkDevices);
    if (QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::TransportMedium)) {
        connect(QNetworkInformation::instance(), &QNetworkInformation::transportMediumChanged, this,
                &PfRingNetworkTrafficMonitor::networkTranportMediumChanged, Qt::UniqueConnection);
    }
    updateNetworkDevices();
}

/// An interface may have taken over the address of another.
void PfRingNetworkTrafficMonitor::networkTranportMediumChanged(QNetworkInformation::TransportMedium)
{
    updateNetworkDevices();
}

void PfRingNetworkTrafficMonitor::updateNetworkDevices()
{
    readInterfaces();
    if (isRunning()) {
        m_thread->setLocalAddresses(localAddresses());
    }
}

void PfRingNetworkTrafficMonitor::readInterfaces()
{
    QHash<int, quint64> gone;
    for (auto it = m_interfaces.keyBegin(); it != m_interfaces.keyEnd(); ++it) {
        gone.insert(*it, m_goneInterfaces.value(*it, timesEmptied()));
    }
    for (const Interface& interface : networkInterfaces(m_sysClassNet)) {
        m_interfaces.insert(interface.index, interface);
        gone.remove(interface.index);
    }
    m_goneInterfaces = gone;
}

/// Of all threads that this has had.
quint64 PfRingNetworkTrafficMonitor::timesEmptied() const
{
    return m_emptiedBefore + (isRunning() ? m_thread->timesEmptied() : 0);
}

PortTraffic PfRingNetworkTrafficMonitor::getPortsBandwidth()
{
    countDropped();
    return m_counters.takePorts();
}

PortTraffic PfRingNetworkTrafficMonitor::getPortsBandwidthTCP()
{
    countDropped();
    return m_counters.takePortsTcp();
}

PortTraffic PfRingNetworkTrafficMonitor::getPortsBandwidthUDP()
{
    countDropped();
    return m_counters.takePortsUdp();
}

PortTraffic PfRingNetworkTrafficMonitor::getPortsBandwidthOther()
{
    countDropped();
    return m_counters.takePortsOther();
}

AddressTraffic PfRingNetworkTrafficMonitor::getIpBandwidth()
{
    countDropped();
    return m_counters.takeAddresses();
}

QList<InterfaceBandwidth> PfRingNetworkTrafficMonitor::getInterfacesBandwidth()
{
    countDropped();
    const quint64 emptied = timesEmptied();
    const QHash<int, InterfaceTraffic> traffic = m_counters.takeInterfaces();
    const auto isKnown = [this](int index) { return m_interfaces.contains(index); };
    if (!std::all_of(traffic.keyBegin(), traffic.keyEnd(), isKnown)) {
        readInterfaces(); // One that came a moment ago.
    }
    QList<InterfaceBandwidth> result;
    for (auto it = traffic.begin(); it != traffic.end(); ++it) {
        if (isKnown(it.key())) {
            result.append({m_interfaces.value(it.key()), it->total, it->internet});
        } else {
            Log::debug("Traffic of an interface that came and went unseen: {}", it.key());
        }
    }
    forgetGone(emptied);
    return result;
}

/// Those whose last bytes were counted, and are taken by now: the thread has been all around the
/// ring since. `emptied` is how often it had emptied the ring before the take.
void PfRingNetworkTrafficMonitor::forgetGone(quint64 emptied)
{
    m_goneInterfaces.removeIf([this, emptied](const auto& gone) {
        return emptied >= gone.value() + 2 && m_interfaces.remove(gone.key());
    });
}

/// The kernel counts from zero again each time.
void PfRingNetworkTrafficMonitor::countDropped()
{
    if (isRunning()) {
        m_dropped.add(m_thread->takeDropped());
    }
}
