// SPDX-License-Identifier: GPL-3.0-or-later
// What one packet costs from its bytes to the counters, beside a bare parse and a hash increment,
// with the allocations counted; and for how long a take shuts the counters.
#include "network/NetworkPacketHandler.h"
#include "network/NetworkPacketHandlerListener.h"
#include "network/TrafficCounters.h"

#include <QtEndian>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <new>
#include <random>
#include <thread>
#include <vector>

namespace {

std::atomic<std::int64_t> s_allocations = 0;

} // namespace

// To count is all that these add to the standard ones.
// NOLINTBEGIN(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
void* operator new(std::size_t size)
{
    s_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

// NOLINTEND(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)

namespace {

using Clock = std::chrono::steady_clock;
using Direction = NetworkPacketHandler::Direction;

constexpr int InterfaceIndex = 2;
constexpr unsigned short Length = 1500;
constexpr std::size_t PacketsPerRun = 8192; ///< A power of two.
constexpr std::size_t PacketsPerBatch = 64;

/// IPv4 and TCP or IPv6 and UDP, up to the ports.
struct Packet
{
    unsigned char version;
    std::uint8_t size;
    std::array<std::uint8_t, 44> bytes;

    std::span<const std::uint8_t> captured() const { return {bytes.data(), size}; }

    IpAddress remote() const
    {
        return version == 4 ? IpAddress::fromIpv4(qFromBigEndian<quint32>(&bytes[12]))
                            : IpAddress::fromIpv6(&bytes[8]);
    }
};

Packet incomingPacket(unsigned char version, std::uint32_t remote, unsigned localPort)
{
    const bool ipv4 = version == 4;
    Packet packet{version, static_cast<std::uint8_t>(ipv4 ? 24 : 44), {}};
    packet.bytes[ipv4 ? 9 : 6] = ipv4 ? 6 : 17;
    const std::size_t source = ipv4 ? 12 : 20;
    for (std::size_t index = 0; index < sizeof remote; ++index) {
        packet.bytes[source + index] = static_cast<std::uint8_t>(remote >> 8 * (3 - index));
    }
    const std::size_t ports = packet.size - std::size_t{4};
    packet.bytes[ports] = 443 >> 8;
    packet.bytes[ports + 1] = 443 & 0xFF;
    packet.bytes[ports + 2] = static_cast<std::uint8_t>(localPort >> 8);
    packet.bytes[ports + 3] = static_cast<std::uint8_t>(localPort);
    return packet;
}

/// From as many remote addresses in random order, one in four of them IPv6, to 200 local ports.
std::vector<Packet> traffic(std::int64_t addresses)
{
    std::mt19937 random(1); // NOLINT(cert-msc51-cpp): the same packets in each run.
    std::vector<std::uint32_t> remotes(static_cast<std::size_t>(addresses));
    std::generate(remotes.begin(), remotes.end(),
                  [&random] { return 0x5000'0000 | random() >> 4; });
    std::vector<Packet> packets;
    packets.reserve(std::max(PacketsPerRun, 2 * remotes.size()));
    while (packets.size() < packets.capacity()) {
        const bool everyOne = packets.size() < remotes.size();
        const std::size_t which = everyOne ? packets.size() : random() % remotes.size();
        const unsigned char version = which % 4 == 3 ? 6 : 4;
        const auto port = static_cast<unsigned>(40'000 + random() % 200);
        packets.push_back(incomingPacket(version, remotes[which], port));
    }
    std::shuffle(packets.begin(), packets.end(), random);
    return packets;
}

/// Looks at what it is told, and keeps nothing.
class Onlooker final : public NetworkPacketHandlerListener
{
public:
    void incrementTraffic(bool upload, const IpAddress& remote, unsigned short localPort,
                          unsigned int bytes, unsigned int internetBytes, int interfaceIndex,
                          Utils::TrafficType type, unsigned short remotePort) override
    {
        benchmark::DoNotOptimize(upload);
        benchmark::DoNotOptimize(remote);
        benchmark::DoNotOptimize(localPort + bytes + internetBytes + remotePort);
        benchmark::DoNotOptimize(interfaceIndex);
        benchmark::DoNotOptimize(type);
    }
};

class Accountant final : public NetworkPacketHandlerListener
{
public:
    void incrementTraffic(bool upload, const IpAddress& remote, unsigned short localPort,
                          unsigned int bytes, unsigned int internetBytes, int interfaceIndex,
                          Utils::TrafficType type, unsigned short remotePort) override
    {
        counters.add(upload, remote, localPort, bytes, internetBytes, interfaceIndex, type,
                     remotePort);
    }

    TrafficCounters counters;
};

void handle(const Packet& packet, NetworkPacketHandlerListener& listener)
{
    static const QSet<IpAddress> localAddresses;
    NetworkPacketHandler::handle(packet.version, packet.captured(), Length, Direction::Incoming,
                                 localAddresses, listener, InterfaceIndex);
}

void takeAll(TrafficCounters& counters)
{
    benchmark::DoNotOptimize(counters.takeAddresses());
    benchmark::DoNotOptimize(counters.takeInterfaces());
    benchmark::DoNotOptimize(counters.takePorts());
    benchmark::DoNotOptimize(counters.takePortsTcp());
    benchmark::DoNotOptimize(counters.takePortsUdp());
    benchmark::DoNotOptimize(counters.takePortsOther());
}

void report(benchmark::State& state, std::size_t packetsPerRun, std::int64_t allocationsBefore)
{
    const double packets = static_cast<double>(state.iterations()) * double(packetsPerRun);
    const auto allocated = static_cast<double>(s_allocations.load() - allocationsBefore);
    state.counters["per_packet"] =
        benchmark::Counter(packets, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["allocations"] = allocated / packets;
}

void bareParse(benchmark::State& state)
{
    const std::vector<Packet> packets = traffic(state.range(0));
    Onlooker listener;
    const std::int64_t before = s_allocations.load();
    for ([[maybe_unused]] const auto& run : state) {
        for (const Packet& packet : packets) {
            handle(packet, listener);
        }
    }
    report(state, packets.size(), before);
}

void oneHashIncrement(benchmark::State& state)
{
    const std::vector<Packet> packets = traffic(state.range(0));
    QHash<IpAddress, quint64> bytes;
    for (const Packet& packet : packets) {
        bytes[packet.remote()] = 0;
    }
    const std::int64_t before = s_allocations.load();
    for ([[maybe_unused]] const auto& run : state) {
        for (const Packet& packet : packets) {
            bytes[packet.remote()] += Length;
        }
    }
    report(state, packets.size(), before);
}

/// The lock is taken for each packet.
void parseAndAccumulate(benchmark::State& state)
{
    const std::vector<Packet> packets = traffic(state.range(0));
    Accountant listener;
    std::for_each(packets.begin(), packets.end(), [&](const Packet& p) { handle(p, listener); });
    const std::int64_t before = s_allocations.load();
    for ([[maybe_unused]] const auto& run : state) {
        for (const Packet& packet : packets) {
            handle(packet, listener);
        }
    }
    report(state, packets.size(), before);
}

/// The lock is held over a batch, as it is while the ring is walked.
void parseAndAccumulateBatches(benchmark::State& state)
{
    const std::vector<Packet> packets = traffic(state.range(0));
    Accountant listener;
    std::for_each(packets.begin(), packets.end(), [&](const Packet& p) { handle(p, listener); });
    const std::int64_t before = s_allocations.load();
    for ([[maybe_unused]] const auto& run : state) {
        for (std::size_t first = 0; first < packets.size(); first += PacketsPerBatch) {
            const std::scoped_lock batch(listener.counters.mutex());
            const std::size_t end = std::min(first + PacketsPerBatch, packets.size());
            for (std::size_t index = first; index < end; ++index) {
                handle(packets[index], listener);
            }
        }
    }
    report(state, packets.size(), before);
}

/// Everything is taken after each run: what the first packets after a take cost counts as well.
void parseAndAccumulateBetweenTakes(benchmark::State& state)
{
    const std::vector<Packet> packets = traffic(state.range(0));
    Accountant listener;
    std::int64_t allocated = 0;
    const auto fillAndTake = [&] {
        std::for_each(packets.begin(), packets.end(),
                      [&](const Packet& p) { handle(p, listener); });
        takeAll(listener.counters);
    };
    fillAndTake();
    fillAndTake();
    for ([[maybe_unused]] const auto& run : state) {
        const std::int64_t before = s_allocations.load();
        std::for_each(packets.begin(), packets.end(),
                      [&](const Packet& p) { handle(p, listener); });
        allocated += s_allocations.load() - before;
        state.PauseTiming();
        takeAll(listener.counters);
        state.ResumeTiming();
    }
    report(state, packets.size(), s_allocations.load() - allocated);
}

/// How long a take of that many addresses keeps a capture thread out, seen from there: for each
/// take that it collided with, how long its attempts at the lock failed.
void lockHeldByTake(benchmark::State& state)
{
    const std::vector<Packet> packets = traffic(state.range(0));
    Accountant listener;
    std::vector<double> collisions;
    for ([[maybe_unused]] const auto& run : state) {
        std::for_each(packets.begin(), packets.end(),
                      [&](const Packet& p) { handle(p, listener); });
        std::atomic<bool> watching = false;
        std::atomic<bool> over = false;
        std::thread capture([&] {
            std::recursive_mutex& mutex = listener.counters.mutex();
            for (watching = true; !over; mutex.unlock()) {
                if (mutex.try_lock()) {
                    continue;
                }
                const auto start = Clock::now();
                mutex.lock();
                const std::chrono::duration<double> waited = Clock::now() - start;
                collisions.push_back(waited.count());
            }
        });
        while (!watching) {
        }
        benchmark::DoNotOptimize(listener.counters.takeAddresses());
        over = true;
        capture.join();
    }
    collisions.push_back(0);
    std::sort(collisions.begin(), collisions.end());
    state.counters["collisions"] = static_cast<double>(collisions.size() - 1);
    state.counters["median"] = collisions[collisions.size() / 2];
    state.counters["longest"] = collisions.back();
}

constexpr std::int64_t Few = 10;
constexpr std::int64_t Many = 1'000;
constexpr std::int64_t VeryMany = 10'000;

BENCHMARK(bareParse)->Arg(VeryMany);
BENCHMARK(oneHashIncrement)->Arg(VeryMany);
BENCHMARK(parseAndAccumulate)->Arg(Few)->Arg(Many)->Arg(VeryMany);
BENCHMARK(parseAndAccumulateBatches)->Arg(Few)->Arg(Many)->Arg(VeryMany);
BENCHMARK(parseAndAccumulateBetweenTakes)->Arg(Few)->Arg(Many)->Arg(VeryMany);
BENCHMARK(lockHeldByTake)->Arg(VeryMany)->Iterations(200)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
