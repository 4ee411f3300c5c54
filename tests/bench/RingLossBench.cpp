// SPDX-License-Identifier: GPL-3.0-or-later
// How many packets the ring loses, and what it costs, at growing rates; beside each, tcpdump on the
// same flow. Each runs for TALLYVANE_BENCH_SECONDS, or 2. Needs the right to make a network
// namespace. Whatever else the machine does shows in the figures.
#include "network/PfRingNetworkTrafficMonitor.h"
#include "support/NetworkPair.h"

#include <QCoreApplication>
#include <QFile>

#include <benchmark/benchmark.h>
#include <signal.h> // NOLINT(modernize-deprecated-headers): kill() is none of <csignal>
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <chrono>

namespace {

constexpr int Port = 5555;
constexpr int PayloadLength = 18; ///< The least that fills an Ethernet frame.
constexpr quint64 FrameLength = 14 + 20 + 8 + PayloadLength;

const QString Name = QStringLiteral("wire");
const QString Prefix = QStringLiteral("203.0.113.");

int seconds()
{
    constexpr int usual = 2;
    const int asked = qEnvironmentVariableIntValue("TALLYVANE_BENCH_SECONDS");
    return asked > 0 ? asked : usual;
}

/// Of this process or of the children that have ended, in user space and in the kernel.
double processorSeconds(int who)
{
    rusage usage = {};
    getrusage(who, &usage);
    constexpr double microsecond = 1e-6;
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * microsecond;
}

/// The packets that came through the wire. What the sender could not put on it, since the kernel's
/// own queue before it was full, is lost on no one here.
quint64 packetsArrived()
{
    QFile counters(QStringLiteral("/proc/thread-self/net/dev"));
    if (counters.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : counters.readAll().split('\n')) {
            if (line.trimmed().startsWith(Name.toLatin1() + ':')) {
                return line.simplified().split(' ').value(2).toULongLong();
            }
        }
    }
    return 0;
}

/// A wire to a neighbour that sends, and the end of the wire here.
class Flow
{
public:
    Flow()
        : m_isMade(m_network.isMade() && m_network.connect(Name, {Prefix}, 2))
        , m_sink(Prefix + QLatin1Char('1'), Port)
    {
    }

    bool isMade() const { return m_isMade; }

    /// Sends from the neighbour for the whole time, calling `everySecond` here. Returns the packets
    /// that arrived.
    template <typename Function>
    quint64 run(int rate, Function everySecond)
    {
        std::atomic<bool> isOver = false;
        std::thread sender([&] {
            m_network.inNeighbour([rate] { send(rate); });
            isOver = true;
        });
        while (!isOver) {
            std::this_thread::sleep_for(std::chrono::seconds(1));
            everySecond();
        }
        sender.join();
        return packetsArrived();
    }

private:
    static void send(int rate)
    {
        QProcess sender;
        sender.start(QCoreApplication::applicationDirPath() + QStringLiteral("/PacketSender"),
                     {Prefix + QLatin1Char('1'), QString::number(Port),
                      QString::number(PayloadLength), QString::number(rate),
                      QString::number(seconds())});
        constexpr int forever = -1;
        sender.waitForFinished(forever);
    }

    NetworkPair m_network;
    bool m_isMade;
    UdpSocket m_sink; ///< Bound, so that nothing answers; never read.
};

void report(benchmark::State& state, quint64 arrived, quint64 counted, double used)
{
    constexpr double percent = 100;
    state.counters["arrived"] = static_cast<double>(arrived);
    state.counters["arrived_per_second"] = static_cast<double>(arrived) / seconds();
    state.counters["lost"] = static_cast<double>(arrived) - static_cast<double>(counted);
    state.counters["core_percent"] = used / seconds() * percent;
}

void ring(benchmark::State& state)
{
    for ([[maybe_unused]] const auto& run : state) {
        Flow flow;
        PfRingNetworkTrafficMonitor monitor;
        if (!flow.isMade() || !monitor.isSupported()) {
            return state.SkipWithError("needs the right to make a network namespace");
        }
        monitor.start();
        quint64 bytes = 0;
        std::chrono::duration<double, std::micro> longestTake{0};
        const auto take = [&] {
            const auto begin = std::chrono::steady_clock::now();
            bytes += monitor.getPortsBandwidth().value(Port).download;
            monitor.getPortsBandwidthUDP();
            monitor.getIpBandwidth();
            monitor.getInterfacesBandwidth();
            longestTake = std::max<decltype(longestTake)>(longestTake,
                                                          std::chrono::steady_clock::now() - begin);
        };
        const double before = processorSeconds(RUSAGE_SELF);
        const quint64 arrived = flow.run(static_cast<int>(state.range(0)), take);
        const double used = processorSeconds(RUSAGE_SELF) - before;
        monitor.stop();
        take();
        report(state, arrived, bytes / FrameLength, used);
        state.counters["longest_take_us"] = longestTake.count();
    }
}

bool hasSaid(QProcess& program, const QByteArray& words)
{
    QByteArray said;
    while (!said.contains(words) && program.waitForReadyRead()) {
        said += program.readAll();
    }
    return said.contains(words);
}

/// From the last words of tcpdump: "25 packets captured", on a line.
quint64 packetsCaptured(const QByteArray& words)
{
    for (const QByteArray& line : words.split('\n')) {
        if (line.endsWith("packets captured")) {
            return line.split(' ').first().toULongLong();
        }
    }
    return 0;
}

void tcpdump(benchmark::State& state)
{
    for ([[maybe_unused]] const auto& run : state) {
        Flow flow;
        QProcess tcpdump;
        tcpdump.start(QStringLiteral("tcpdump"),
                      {QStringLiteral("-i"), Name, QStringLiteral("-nw"),
                       QStringLiteral("/dev/null"), QStringLiteral("udp")});
        tcpdump.setReadChannel(QProcess::StandardError);
        if (!flow.isMade() || !hasSaid(tcpdump, "listening on")) {
            return state.SkipWithError("needs tcpdump and the right to make a network namespace");
        }
        const quint64 arrived = flow.run(static_cast<int>(state.range(0)), [] {});
        const double before = processorSeconds(RUSAGE_CHILDREN);
        kill(static_cast<pid_t>(tcpdump.processId()), SIGINT);
        tcpdump.waitForFinished();
        const double used = processorSeconds(RUSAGE_CHILDREN) - before;
        report(state, arrived, packetsCaptured(tcpdump.readAll()), used);
    }
}

void addRates(benchmark::internal::Benchmark* benchmark)
{
    for (const int rate : {10'000, 50'000, 100'000, 150'000, 200'000}) {
        benchmark->Arg(rate);
    }
    benchmark->Iterations(1)->UseRealTime()->Unit(benchmark::kSecond);
}

BENCHMARK(ring)->Apply(addRates);
BENCHMARK(tcpdump)->Apply(addRates);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
