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
    m_goneInterfaces = QSet<int>(m_interfaces.keyBegin(), m_interfaces.keyEnd());
    for (const Interface& interface : networkInterfaces(m_sysClassNet)) {
        m_interfaces.insert(interface.index, interface);
        m_goneInterfaces.remove(interface.index);
    }
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
    forgetSilent(traffic);
    return result;
}

/// Of the interfaces that are gone, those that had no more traffic since the take before.
void PfRingNetworkTrafficMonitor::forgetSilent(const QHash<int, InterfaceTraffic>& traffic)
{
    m_goneInterfaces.removeIf([this, &traffic](int index) {
        return !traffic.contains(index) && m_interfaces.remove(index);
    });
}

void PfRingNetworkTrafficMonitor::countDropped()
{
    if (isRunning()) {
        m_dropped.add(m_thread->takeDropped());
    }
}
