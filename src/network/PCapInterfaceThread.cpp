// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/PCapInterfaceThread.h"

#include "base/Log.h"
#include "network/EthernetFrame.h"
#include "network/NetworkPacketHandler.h"
#include "network/PcapLibrary.h"

#include <QMutexLocker>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr const char* Filter = "(udp or tcp)";
constexpr int SnapLength = 9000; ///< Bytes of each packet.
constexpr int NotPromiscuous = 0;
constexpr int TimeoutMs = 1; ///< How long the kernel gathers packets before it hands them over.
constexpr int Optimised = 1;
constexpr bpf_u_int32 NoNetmask = 0;
constexpr int EverythingGathered = -1;

bool succeeded(pcap_t* handle, const char* function, int result)
{
    if (result != 0) {
        Log::warn("Unable to create network capture handle. {} failed with: {}", function,
                  w_pcap_geterr(handle));
    }
    return result == 0;
}

bool activate(pcap_t* handle)
{
    return succeeded(handle, "pcap_set_snaplen", w_pcap_set_snaplen(handle, SnapLength)) &&
           succeeded(handle, "pcap_set_promisc", w_pcap_set_promisc(handle, NotPromiscuous)) &&
           succeeded(handle, "pcap_set_timeout", w_pcap_set_timeout(handle, TimeoutMs)) &&
           succeeded(handle, "pcap_activate", w_pcap_activate(handle));
}

bool setFilter(pcap_t* handle)
{
    bpf_program program{};
    if (w_pcap_compile(handle, &program, Filter, Optimised, NoNetmask) != 0) {
        Log::warn("Couldn't parse filter {}: {}", Filter, w_pcap_geterr(handle));
        return false;
    }
    const bool isSet = w_pcap_setfilter(handle, &program) == 0;
    if (!isSet) {
        Log::warn("Couldn't install filter {}: {}", Filter, w_pcap_geterr(handle));
    }
    w_pcap_freecode(&program);
    return isSet;
}

} // namespace

PCapInterfaceThread::PCapInterfaceThread(const Interface& interface,
                                         const QSet<IpAddress>& localAddresses)
    : m_interface(interface)
    , m_name(interface.name)
    , m_index(interface.index)
    , m_localAddresses(localAddresses)
    , m_handle(localAddresses.isEmpty() ? Handle(nullptr, w_pcap_close) : open(interface.name))
    , m_hasEnded(!m_handle)
{
    setObjectName(m_name);
}

PCapInterfaceThread::~PCapInterfaceThread()
{
    stop();
    wait();
}

PCapInterfaceThread::Handle PCapInterfaceThread::open(const QString& name)
{
    std::array<char, PCAP_ERRBUF_SIZE> error{};
    Handle handle(w_pcap_create(name.toLatin1().constData(), error.data()), w_pcap_close);
    if (!handle) {
        Log::warn("Unable to create network capture handle. pcap_create failed with: {}",
                  error.data());
    } else if (!activate(handle.get()) || !setFilter(handle.get())) {
        handle.reset();
    }
    return handle;
}

/// Leaves the handle open: it is closed by the thread, when nothing reads from it any more.
void PCapInterfaceThread::stop()
{
    const QMutexLocker lock(&m_counters.mutex());
    if (!m_hasEnded) {
        m_hasEnded = true;
        w_pcap_breakloop(m_handle.get());
    }
}

bool PCapInterfaceThread::hasEnded() const
{
    const QMutexLocker lock(&m_counters.mutex());
    return m_hasEnded;
}

void PCapInterfaceThread::update(const Interface& interface, const QSet<IpAddress>& localAddresses)
{
    m_interface = interface;
    const QMutexLocker lock(&m_counters.mutex());
    m_localAddresses = localAddresses;
}

void PCapInterfaceThread::run()
{
    const pid_t id = gettid();
    Log::info("Network pcap thread started on interface {} in thread {}", m_name, id);
    capture();
    Log::info("Network pcap thread '{}' stopped on interface {}", id, m_name);
    close();
}

void PCapInterfaceThread::capture()
{
    // Only this thread closes it, so outside the lock it stays valid here.
    pcap_t* const handle = m_handle.get();
    if (!handle) {
        Log::warn("No valid pcap handle found!");
        return;
    }
    while (canContinue()) {
        const int result = w_pcap_dispatch(handle, EverythingGathered, packetCallback,
                                           reinterpret_cast<unsigned char*>(this));
        if (result == PCAP_ERROR) {
            Log::info("pcap_dispatch failed on interface {} with: {}", m_name,
                      w_pcap_geterr(handle));
        }
        if (result == PCAP_ERROR || result == PCAP_ERROR_BREAK) {
            stop();
        }
    }
}

/// Taken out under the lock and closed outside it, since to unmap the kernel's buffer takes long.
void PCapInterfaceThread::close()
{
    Handle closing(nullptr, w_pcap_close);
    const QMutexLocker lock(&m_counters.mutex());
    closing.swap(m_handle);
}

// NOLINTNEXTLINE(readability-non-const-parameter): the type is libpcap's.
void PCapInterfaceThread::packetCallback(unsigned char* thread, const pcap_pkthdr* header,
                                         const unsigned char* frame)
{
    reinterpret_cast<PCapInterfaceThread*>(thread)->handlePacket(*header, frame);
}

void PCapInterfaceThread::handlePacket(const pcap_pkthdr& header, const unsigned char* frame)
{
    const std::optional<IpPacket> packet = ipPacketIn({frame, header.caplen});
    if (!packet) {
        return;
    }
    // Its lower sixteen bits, as the ring counts it: longer than any on the wire is only what the
    // network card is yet to cut up, where that is allowed to be so long at all.
    const auto length = static_cast<unsigned short>(header.len);
    const QMutexLocker lock(&m_counters.mutex());
    NetworkPacketHandler::handle(packet->version, packet->captured, length,
                                 NetworkPacketHandler::Direction::Unknown, m_localAddresses, *this,
                                 m_index);
}

void PCapInterfaceThread::incrementTraffic(bool upload, const IpAddress& remote,
                                           unsigned short localPort, unsigned int bytes,
                                           unsigned int internetBytes, int interfaceIndex,
                                           Utils::TrafficType type, unsigned short remotePort)
{
    const QMutexLocker lock(&m_counters.mutex());
    if (!m_hasEnded) {
        m_counters.add(upload, remote, localPort, bytes, internetBytes, interfaceIndex, type,
                       remotePort);
    }
}
