// SPDX-License-Identifier: GPL-3.0-or-later
// What it costs to find the owners of 1,000 sockets among 500 processes: when asked for the first
// time, and again as every minute; and with as many ports that no socket has. Beside it stands `ss
// -tunap`, which tells the owners of all sockets.
#include "network/SocketOwners.h"

#include <QProcess>

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <vector>

namespace {

constexpr int Processes = 500;
constexpr int SocketsPerProcess = 2;
constexpr uid_t User = 1000;
constexpr int FirstOwnDescriptor = STDERR_FILENO + 1;

/// Opens a socket on a free port of the loopback address, and returns that port; 0 for none.
unsigned short openSocket(int type)
{
    const int socket = ::socket(AF_INET, type, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    if (::bind(socket, any, size) != 0 || (type == SOCK_STREAM && ::listen(socket, 1) != 0) ||
        ::getsockname(socket, any, &size) != 0) {
        return 0;
    }
    return ntohs(address.sin_port);
}

/// Processes of an ordinary user, each with a TCP and a UDP socket. They end with this object, or
/// with this process.
class SocketHolders
{
public:
    SocketHolders()
    {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0) {
            return;
        }
        for (int i = 0; i < Processes; ++i) {
            const pid_t child = ::fork();
            if (child == 0) {
                hold(ends[1]);
            }
            m_children.push_back(child);
        }
        ::close(ends[1]);
        std::array<unsigned short, SocketsPerProcess> ports{};
        while (::read(ends[0], ports.data(), sizeof ports) == sizeof ports) {
            m_ports.unite({ports.begin(), ports.end()});
        }
        ::close(ends[0]);
    }

    SocketHolders(const SocketHolders&) = delete;
    SocketHolders& operator=(const SocketHolders&) = delete;

    ~SocketHolders()
    {
        for (const pid_t child : m_children) {
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
        }
    }

    const QSet<unsigned short>& ports() const { return m_ports; }

private:
    [[noreturn]] static void hold(int told)
    {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::geteuid() == 0 && ::setuid(User) != 0) {
            ::_exit(1);
        }
        // What this program was started with would be looked at five hundred times.
        ::dup2(told, FirstOwnDescriptor);
        ::close_range(FirstOwnDescriptor + 1, ~0U, 0);
        const std::array ports{openSocket(SOCK_STREAM), openSocket(SOCK_DGRAM)};
        (void)::write(FirstOwnDescriptor, ports.data(), sizeof ports);
        ::close(FirstOwnDescriptor);
        while (true) {
            ::pause();
        }
    }

    std::vector<pid_t> m_children;
    QSet<unsigned short> m_ports;
};

double processorMs(int who)
{
    rusage usage{};
    ::getrusage(who, &usage);
    constexpr double msPerSecond = 1e3;
    constexpr double msPerMicrosecond = 1e-3;
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * msPerSecond +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * msPerMicrosecond;
}

/// Beside the time that passes, which other programs share, the processor's own.
void setProcessorMs(benchmark::State& state, double ms)
{
    state.counters["processor_ms"] = benchmark::Counter(ms, benchmark::Counter::kAvgIterations);
}

QSet<unsigned short> portsWithoutSocket(const QSet<unsigned short>& used)
{
    QSet<unsigned short> free;
    for (unsigned short port = 1; free.size() < used.size(); ++port) {
        if (!used.contains(port)) {
            free.insert(port);
        }
    }
    return free;
}

void findFirst(benchmark::State& state, const QSet<unsigned short>& ports)
{
    qsizetype found = 0;
    const double before = processorMs(RUSAGE_SELF);
    while (state.KeepRunning()) {
        found = SocketOwners(QStringLiteral("/")).find(ports).size();
    }
    setProcessorMs(state, processorMs(RUSAGE_SELF) - before);
    state.counters["found"] = static_cast<double>(found);
    state.counters["wanted"] = static_cast<double>(ports.size());
}

void findAgain(benchmark::State& state, const QSet<unsigned short>& ports)
{
    SocketOwners owners(QStringLiteral("/"));
    qsizetype found = owners.find(ports).size();
    const double before = processorMs(RUSAGE_SELF);
    while (state.KeepRunning()) {
        found = owners.find(ports).size();
    }
    setProcessorMs(state, processorMs(RUSAGE_SELF) - before);
    state.counters["found"] = static_cast<double>(found);
    state.counters["wanted"] = static_cast<double>(ports.size());
}

void referenceSs(benchmark::State& state)
{
    qsizetype lines = 0;
    const double before = processorMs(RUSAGE_CHILDREN);
    while (state.KeepRunning()) {
        QProcess ss;
        ss.start(QStringLiteral("ss"), {QStringLiteral("-tunap")});
        ss.waitForFinished();
        lines = ss.readAllStandardOutput().count('\n');
    }
    setProcessorMs(state, processorMs(RUSAGE_CHILDREN) - before);
    if (lines == 0) {
        state.SkipWithError("ss of iproute2 is not installed");
    }
    state.counters["found"] = static_cast<double>(lines - 1);
}

/// Only ever run beside each other, so that both see the same machine.
void addBenchmarks(const SocketHolders& holders)
{
    const auto add = [](const char* name, auto function, auto... arguments) {
        benchmark::RegisterBenchmark(name, function, arguments...)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    };
    add("findFirst", &findFirst, holders.ports());
    add("findAgain", &findAgain, holders.ports());
    add("findWithoutSocket", &findFirst, portsWithoutSocket(holders.ports()));
    add("referenceSs", &referenceSs);
}

} // namespace

int main(int argc, char** argv)
{
    const SocketHolders holders;
    if (holders.ports().size() < Processes) {
        std::fputs("skipped: the processes could not open their sockets\n", stderr);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    addBenchmarks(holders);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
