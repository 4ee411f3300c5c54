// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/PfRingThread.h"

#include "base/Log.h"
#include "network/RingFrame.h"
#include "network/RingPace.h"
#include "network/TrafficCounters.h"

#include <QMutexLocker>

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>

namespace {

/// Frames counted under one lock: enough to forget its cost, few enough for a take to wait for
/// some ten microseconds at most.
constexpr std::size_t BatchSize = 256;

static_assert(PacketRing::FrameCount % BatchSize == 0);

timespec toTimespec(std::chrono::microseconds duration)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(duration);
    const std::chrono::nanoseconds rest = duration - seconds;
    return {seconds.count(), rest.count()};
}

} // namespace

PfRingThread::PfRingThread(TrafficCounters& counters)
    : m_counters(counters)
    , m_wakeUp(eventfd(0, EFD_CLOEXEC))
{
    if (!m_wakeUp.isValid()) {
        Log::error("eventfd() failed {}", std::strerror(errno));
    }
    setObjectName(QStringLiteral("pf-ring")); // Names the thread, too.
}

PfRingThread::~PfRingThread()
{
    stop();
}

void PfRingThread::stop()
{
    m_stopRequested = true;
    eventfd_write(m_wakeUp.get(), 1);
    wait();
}

void PfRingThread::setLocalAddresses(const QSet<IpAddress>& addresses)
{
    const QMutexLocker lock(&m_counters.mutex());
    m_ipAddresses = addresses;
}

void PfRingThread::run()
{
    Log::info("PF-Ring thread started");
    std::chrono::microseconds sleep = RingPace::LongestSleep;
    while (!m_stopRequested) {
        sleep = letFramesGather(RingPace::nextSleep(sleep, walk()));
        waitForFrames();
    }
    walk(); // What came during the last sleep.
    Log::info("PF-Ring thread stopped");
}

/// Counts what the kernel has filled, once around the ring at most. Returns the number of frames.
std::size_t PfRingThread::walk()
{
    std::size_t filled = 0;
    while (filled < PacketRing::FrameCount && m_ring.isReady(m_position)) {
        filled += walkBatch();
    }
    return filled;
}

std::size_t PfRingThread::walkBatch()
{
    const QMutexLocker lock(&m_counters.mutex());
    std::size_t filled = 0;
    while (filled < BatchSize && m_ring.isReady(m_position)) {
        handleFrame();
        m_ring.release(m_position);
        m_position = (m_position + 1) % PacketRing::FrameCount;
        ++filled;
    }
    return filled;
}

void PfRingThread::handleFrame()
{
    if (const auto frame = RingFrame::decode(m_ring.frame(m_position))) {
        NetworkPacketHandler::handle(frame->version, frame->captured, frame->length,
                                     frame->direction, m_ipAddresses, *this, frame->interfaceIndex);
    }
}

void PfRingThread::incrementTraffic(bool upload, const IpAddress& remote, unsigned short localPort,
                                    unsigned int bytes, unsigned int internetBytes,
                                    int interfaceIndex, Utils::TrafficType type,
                                    unsigned short remotePort)
{
    m_counters.add(upload, remote, localPort, bytes, internetBytes, interfaceIndex, type,
                   remotePort);
}

/// Whether more frames wait than a walk should find; the kernel fills them in order.
bool PfRingThread::isFillingFast() const
{
    return m_ring.isReady((m_position + RingPace::WantedFrames) % PacketRing::FrameCount);
}

/// Sleeps, but not on when the frames come fast or the thread shall end. Returns how long.
std::chrono::microseconds PfRingThread::letFramesGather(std::chrono::microseconds duration)
{
    pollfd wakeUp{m_wakeUp.get(), POLLIN, 0};
    std::chrono::microseconds slept{0};
    while (slept < duration && !m_stopRequested && !isFillingFast()) {
        const std::chrono::microseconds part = std::min(duration - slept, RingPace::LookAfter);
        const timespec timeout = toTimespec(part);
        ppoll(&wakeUp, 1, &timeout, nullptr);
        slept += part;
    }
    return slept;
}

/// Without a time-out: while no packet comes, nothing runs.
void PfRingThread::waitForFrames()
{
    std::array<pollfd, 2> watched{pollfd{m_ring.descriptor(), POLLIN | POLLERR, 0},
                                  pollfd{m_wakeUp.get(), POLLIN, 0}};
    constexpr int forever = -1;
    poll(watched.data(), watched.size(), forever);
    if ((watched.front().revents & POLLERR) != 0) {
        m_ring.clearError();
    }
}
