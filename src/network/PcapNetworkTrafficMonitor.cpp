// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/PcapNetworkTrafficMonitor.h"

#include "base/Log.h"
#include "network/LocalAddresses.h"
#include "network/PCapInterfaceThread.h"
#include "network/PcapDevices.h"

#include <QReadLocker>
#include <QWriteLocker>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::milliseconds RefreshInterval{300'000};

void add(NetworkTraffic& sum, const NetworkTraffic& more)
{
    sum.download += more.download;
    sum.upload += more.upload;
}

/// Keys beyond the limit of one accumulator are counted together as in there.
template <typename Key>
void add(QHash<Key, NetworkTraffic>& sum, const QHash<Key, NetworkTraffic>& more)
{
    for (auto entry = more.cbegin(); entry != more.cend(); ++entry) {
        const bool hasRoom = sum.size() < TrafficCounters::AddressLimit;
        add(sum[hasRoom || sum.contains(entry.key()) ? entry.key() : Key()], entry.value());
    }
}

} // namespace

PcapNetworkTrafficMonitor::PcapNetworkTrafficMonitor(const QString& library, QObject* parent)
    : QObject(parent)
    , m_library(library)
{
    if (!m_library.isComplete()) {
        Log::warn("libcap not available: {}", m_library.error());
        return;
    }
    const auto devices = pcapDevices();
    m_isSupported = devices && !devices->isEmpty();
    if (devices && !m_isSupported) {
        Log::warn("No pcap network devices found!");
    }
    m_refreshTimer.setInterval(RefreshInterval);
    m_refreshTimer.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_refreshTimer, &QTimer::timeout, this, &PcapNetworkTrafficMonitor::refresh);
}

PcapNetworkTrafficMonitor::~PcapNetworkTrafficMonitor()
{
    stop();
}

void PcapNetworkTrafficMonitor::start()
{
    Log::info("Starting PcapNetworkTrafficMonitor..");
    if (!m_isSupported) {
        Log::warn("No pcap found!");
        return;
    }
    if (m_isRunning) {
        Log::debug("Already running!");
        return;
    }
    m_isRunning = true;
    m_interfaces.clear();
    stopAllThreads();
    m_untaken = {};
    refresh();
    m_refreshTimer.start();
}

void PcapNetworkTrafficMonitor::stop()
{
    if (!m_isRunning) {
        return;
    }
    Log::info("Stopping PcapNetworkTrafficMonitor..");
    m_isRunning = false;
    m_refreshTimer.stop();
    stopAllThreads();
}

void PcapNetworkTrafficMonitor::updateNetworkDevices()
{
    if (m_isRunning) {
        refresh();
    }
}

void PcapNetworkTrafficMonitor::refresh()
{
    removeIdleThreads();
    const auto devices = pcapDevices();
    if (!devices) {
        return;
    }
    // What is left out and why stands in the log once, and not every five minutes.
    const Log::Level level = m_interfaces.isEmpty() ? Log::Level::Info : Log::Level::Debug;
    const QHash<QString, Interface> known = std::exchange(m_interfaces, {});
    const QSet<IpAddress> addresses = localAddresses();
    for (const CaptureDevice& device : findAllDevices(*devices, systemInterfaces(), level)) {
        const QString& name = device.interface.name;
        const Sighting sighting = known.contains(name) ? Sighting::Again : Sighting::First;
        Log::info("Found {} interface: {}", sighting == Sighting::First ? "new" : "old", name);
        m_interfaces.insert(name, device.interface);
        follow(device, sighting, addresses);
    }
    for (const QString& name : known.keys()) {
        if (!m_interfaces.contains(name)) {
            stopThread(name);
        }
    }
}

/// On an interface that is switched off, libpcap would look a thousand times a second whether it is
/// back. One that another of its name has replaced is told by its index, since its thread may not
/// have noticed yet.
void PcapNetworkTrafficMonitor::follow(const CaptureDevice& device, Sighting sighting,
                                       const QSet<IpAddress>& localAddresses)
{
    const Interface& interface = device.interface;
    PCapInterfaceThread* const thread = threadOf(interface.name);
    if (thread && device.isUp && thread->interface().index == interface.index) {
        thread->update(interface, localAddresses);
        return;
    }
    stopThread(interface.name);
    if (device.isUp) {
        Log::info("{} PcapNetworkTrafficMonitor for interface {}",
                  sighting == Sighting::First ? "Starting" : "Restarting", interface.name);
        startThread(interface, localAddresses);
    }
}

void PcapNetworkTrafficMonitor::startThread(const Interface& interface,
                                            const QSet<IpAddress>& localAddresses)
{
    auto thread = std::make_unique<PCapInterfaceThread>(interface, localAddresses);
    thread->start();
    const QWriteLocker lock(&m_lock);
    m_threads.push_back(std::move(thread));
}

void PcapNetworkTrafficMonitor::removeIdleThreads()
{
    endThreads([](const PCapInterfaceThread& thread) {
        const bool isIdle = thread.hasEnded();
        if (isIdle) {
            Log::info("Removed idle thread for interface: {}", thread.interface().name);
        }
        return isIdle;
    });
}

void PcapNetworkTrafficMonitor::stopThread(const QString& name)
{
    endThreads([&name](const PCapInterfaceThread& thread) {
        const bool isMeant = thread.interface().name == name;
        if (isMeant) {
            Log::info("Stopping PcapNetworkTrafficMonitor for interface {}", name);
        }
        return isMeant;
    });
}

void PcapNetworkTrafficMonitor::stopAllThreads()
{
    endThreads([](const PCapInterfaceThread&) { return true; });
}

/// Only the main thread changes the list, so it needs no lock to read it.
PCapInterfaceThread* PcapNetworkTrafficMonitor::threadOf(const QString& name) const
{
    const auto found =
        std::find_if(m_threads.cbegin(), m_threads.cend(),
                     [&name](const auto& thread) { return thread->interface().name == name; });
    return found == m_threads.cend() ? nullptr : found->get();
}

/// Asks `isOver` once about each thread. All are told to end before the first is waited for.
template <typename Predicate>
void PcapNetworkTrafficMonitor::endThreads(Predicate isOver)
{
    const auto firstOver = [&] {
        const QWriteLocker lock(&m_lock);
        return std::stable_partition(m_threads.begin(), m_threads.end(),
                                     [&isOver](const auto& thread) { return !isOver(*thread); });
    }();
    if (firstOver == m_threads.end()) {
        return;
    }
    std::for_each(firstOver, m_threads.end(), [](const auto& thread) { thread->stop(); });
    std::for_each(firstOver, m_threads.end(), [](const auto& thread) { thread->wait(); });
    keepUntaken();
    const QWriteLocker lock(&m_lock);
    m_threads.erase(firstOver, m_threads.end());
}

int PcapNetworkTrafficMonitor::countThreads() const
{
    const QReadLocker lock(&m_lock);
    return static_cast<int>(
        std::count_if(m_threads.cbegin(), m_threads.cend(),
                      [](const auto& thread) { return thread->isCapturing(); }));
}

template <typename Traffic>
Traffic PcapNetworkTrafficMonitor::take(Traffic& untaken, Traffic (TrafficCounters::*taking)())
{
    Traffic taken = std::exchange(untaken, {});
    const QReadLocker lock(&m_lock);
    for (const auto& thread : m_threads) {
        add(taken, (thread->counters().*taking)());
    }
    return taken;
}

void PcapNetworkTrafficMonitor::keepUntaken()
{
    m_untaken.ports = getPortsBandwidth();
    m_untaken.portsTcp = getPortsBandwidthTCP();
    m_untaken.portsUdp = getPortsBandwidthUDP();
    m_untaken.portsOther = getPortsBandwidthOther();
    m_untaken.addresses = getIpBandwidth();
    m_untaken.interfaces = takeInterfaces();
}

PortTraffic PcapNetworkTrafficMonitor::getPortsBandwidth()
{
    return take(m_untaken.ports, &TrafficCounters::takePorts);
}

PortTraffic PcapNetworkTrafficMonitor::getPortsBandwidthTCP()
{
    return take(m_untaken.portsTcp, &TrafficCounters::takePortsTcp);
}

PortTraffic PcapNetworkTrafficMonitor::getPortsBandwidthUDP()
{
    return take(m_untaken.portsUdp, &TrafficCounters::takePortsUdp);
}

PortTraffic PcapNetworkTrafficMonitor::getPortsBandwidthOther()
{
    return take(m_untaken.portsOther, &TrafficCounters::takePortsOther);
}

AddressTraffic PcapNetworkTrafficMonitor::getIpBandwidth()
{
    return take(m_untaken.addresses, &TrafficCounters::takeAddresses);
}

QList<InterfaceBandwidth> PcapNetworkTrafficMonitor::getInterfacesBandwidth()
{
    return takeInterfaces().values();
}

QMap<int, InterfaceBandwidth> PcapNetworkTrafficMonitor::takeInterfaces()
{
    QMap<int, InterfaceBandwidth> taken = std::exchange(m_untaken.interfaces, {});
    const QReadLocker lock(&m_lock);
    for (const auto& thread : m_threads) {
        const int index = thread->interface().index;
        const InterfaceTraffic crossed = thread->counters().takeInterfaces().value(index);
        InterfaceBandwidth& bandwidth = taken[index];
        bandwidth.interface = thread->interface();
        add(bandwidth.total, crossed.total);
        add(bandwidth.internet, crossed.internet);
    }
    return taken;
}
