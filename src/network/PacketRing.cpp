// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/PacketRing.h"

#include "base/Log.h"

#include <arpa/inet.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <sys/mman.h>
#include <sys/socket.h>

#include <atomic>
#include <cerrno>
#include <cstring>

namespace {

constexpr unsigned int BlockSize = 524288;
constexpr unsigned int BlockCount = 1;
constexpr std::size_t RingSize = std::size_t{BlockSize} * BlockCount;

static_assert(PacketRing::FrameCount * PacketRing::FrameSize == RingSize);
static_assert(PacketRing::FrameSize % TPACKET_ALIGNMENT == 0);
static_assert(std::atomic_ref<unsigned long>::is_always_lock_free, "the kernel takes no lock");

} // namespace

PacketRing::PacketRing()
{
    if (!openSocket() || !makeRing() || !mapRing() || !bindToAll()) {
        m_frames.reset();
    }
}

/// Without a protocol: nothing is captured before the ring stands.
bool PacketRing::openSocket()
{
    m_socket = FileDescriptor(socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0));
    if (!m_socket.isValid()) {
        Log::error("Failed to open PF_PACKET socket {}", std::strerror(errno));
    }
    return m_socket.isValid();
}

bool PacketRing::makeRing()
{
    tpacket_req request = {};
    request.tp_block_size = BlockSize;
    request.tp_block_nr = BlockCount;
    request.tp_frame_size = FrameSize;
    request.tp_frame_nr = FrameCount;
    if (setsockopt(descriptor(), SOL_PACKET, PACKET_RX_RING, &request, sizeof request) != 0) {
        Log::error("setsockopt() failure {}", std::strerror(errno));
        return false;
    }
    return true;
}

bool PacketRing::mapRing()
{
    void* const frames =
        mmap(nullptr, RingSize, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor(), 0);
    if (frames == MAP_FAILED) {
        Log::error("mmap() failed {}", std::strerror(errno));
        return false;
    }
    m_frames.reset(static_cast<std::uint8_t*>(frames));
    return true;
}

bool PacketRing::bindToAll()
{
    constexpr int allInterfaces = 0;
    sockaddr_ll address = {};
    address.sll_family = AF_PACKET;
    address.sll_protocol = htons(ETH_P_ALL);
    address.sll_ifindex = allInterfaces;
    if (bind(descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        Log::error("bind() failed {}", std::strerror(errno));
        return false;
    }
    return true;
}

void PacketRing::Unmap::operator()(std::uint8_t* frames) const
{
    munmap(frames, RingSize);
}

/// The first member of the frame's header, `tp_status`.
unsigned long& PacketRing::status(std::size_t index) const
{
    return *reinterpret_cast<unsigned long*>(m_frames.get() + index * FrameSize);
}

/// Acquires what the kernel wrote before it set the status.
bool PacketRing::isReady(std::size_t index) const
{
    return (std::atomic_ref(status(index)).load(std::memory_order_acquire) & TP_STATUS_USER) != 0;
}

std::span<const std::uint8_t> PacketRing::frame(std::size_t index) const
{
    return {m_frames.get() + index * FrameSize, FrameSize};
}

/// Released only after every read of the frame: the kernel may fill it at once.
void PacketRing::release(std::size_t index)
{
    std::atomic_ref(status(index)).store(TP_STATUS_KERNEL, std::memory_order_release);
}

/// Reading it resets the kernel's count.
std::uint64_t PacketRing::takeDropped()
{
    tpacket_stats statistics = {};
    socklen_t size = sizeof statistics;
    const int result = getsockopt(descriptor(), SOL_PACKET, PACKET_STATISTICS, &statistics, &size);
    return result == 0 ? statistics.tp_drops : 0;
}

void PacketRing::clearError()
{
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(descriptor(), SOL_SOCKET, SO_ERROR, &error, &size);
    Log::debug("Error of the PF_PACKET socket: {}", std::strerror(error));
}
