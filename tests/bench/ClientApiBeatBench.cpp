// SPDX-License-Identifier: GPL-3.0-or-later
// What a beat of the client API's WebSocket server costs the main thread, with so many programs
// that have identified themselves: one update, built once and sent to each over its own connection.
// The column "CPU" is the processor time of that thread alone; the programs read on another. Beside
// it stand a beat that nobody waits for, the building of one update, and the bare system calls that
// send as many bytes to as many connections.
#include "account/LocalStats.h"
#include "account/OnlineFigures.h"
#include "clientapi/ClientApiResponses.h"
#include "clientapi/ClientApiWebsocketServer.h"
#include "clientapi/WebsocketBytes.h"
#include "profiles/ProfileManager.h"
#include "stats/LiveRates.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;

void require(bool done, int line = __builtin_LINE())
{
    if (!done) {
        std::fprintf(stderr, "ClientApiBeatBench: line %d failed\n", line);
        std::abort();
    }
}

/// The other ends of the connections: reads what comes, on a thread that sleeps until then.
class Readers
{
public:
    Readers()
        : m_thread([this](const std::stop_token& stop) { read(stop); })
    {
    }

    Readers(const Readers&) = delete;
    Readers& operator=(const Readers&) = delete;

    ~Readers()
    {
        m_thread.request_stop();
        m_thread.join();
        std::for_each(m_sockets.cbegin(), m_sockets.cend(), close);
        close(m_poll);
    }

    /// Connects to a port of this machine.
    void connectTo(quint16 port)
    {
        const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        require(socket != -1);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        require(connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0);
        m_sockets.push_back(socket);
        epoll_event event = {};
        event.events = EPOLLIN;
        event.data.fd = socket;
        require(epoll_ctl(m_poll, EPOLL_CTL_ADD, socket, &event) == 0);
    }

    /// By every connection.
    void sendAll(const QByteArray& bytes) const
    {
        const auto size = static_cast<size_t>(bytes.size());
        for (const int socket : m_sockets) {
            require(send(socket, bytes.constData(), size, 0) == bytes.size());
        }
    }

    /// Bytes, over all connections.
    quint64 received() const { return m_received; }

    /// Until all of so many bytes were received; false where they are more, or do not come.
    bool waitFor(quint64 bytes) const
    {
        const auto end = std::chrono::steady_clock::now() + 10s;
        while (m_received < bytes && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(20us);
        }
        return m_received == bytes;
    }

private:
    void read(const std::stop_token& stop)
    {
        std::array<epoll_event, 64> events = {};
        std::array<char, 65'536> buffer = {};
        while (!stop.stop_requested()) {
            constexpr int wakeMs = 20;
            const int ready =
                epoll_wait(m_poll, events.data(), static_cast<int>(events.size()), wakeMs);
            for (int i = 0; i < ready; ++i) {
                const int socket = events.at(static_cast<size_t>(i)).data.fd;
                const ssize_t bytes = recv(socket, buffer.data(), buffer.size(), 0);
                require(bytes > 0);
                m_received += static_cast<quint64>(bytes);
            }
        }
    }

    int m_poll = epoll_create1(EPOLL_CLOEXEC);
    std::vector<int> m_sockets;
    std::atomic<quint64> m_received = 0;
    std::jthread m_thread;
};

/// The server as in a client that has an account, whose beats come when a benchmark wants them.
class Host
{
public:
    Host()
    {
        m_localStats.setup(m_database.directory());
        OnlineFigures::store(OnlineTotals{.keys = 31'234'567,
                                          .clicks = 12'345'678,
                                          .download = 4'567'890,
                                          .upload = 1'234'567,
                                          .uptime = 98'765'432,
                                          .scrolls = 23'456'789,
                                          .distanceMiles = 1'234.5});
        OnlineFigures::store(OnlineRanks{1'234, 123, 12'345, 1, 2, 3, 4});
        m_timer->stop();
        m_timer->setSingleShot(true);
        require(m_server.listen(0));
    }

    /// Programs that identify themselves and read what they are sent.
    void connectPrograms(Readers& readers, qint64 count)
    {
        for (qint64 i = 0; i < count; ++i) {
            readers.connectTo(m_server.port());
            QCoreApplication::processEvents();
        }
        readers.sendAll(WebsocketBytes::handshake());
        settle(readers);
        readers.sendAll(WebsocketBytes::frame(R"({"source":"plugin","action":"identify"})"));
        settle(readers);
        m_connections = m_server.findChildren<QTcpSocket*>();
        require(m_connections.size() == count);
    }

    /// Ends when everything was handed to the kernel.
    void beat() const
    {
        m_timer->start(0);
        while (m_timer->isActive() || isSending()) {
            QCoreApplication::processEvents();
        }
    }

    QByteArray update() const
    {
        const QJsonObject object{{QStringLiteral("action"), QStringLiteral("update-status")},
                                 {QStringLiteral("data"), m_responses.formatAllStats()}};
        return QJsonDocument(object).toJson(QJsonDocument::Compact);
    }

    /// Of an update with what goes before it on the wire: for this length, four bytes.
    quint64 frameSize() const { return static_cast<quint64>(update().size()) + 4; }

private:
    /// Until nothing more is answered.
    static void settle(const Readers& readers)
    {
        quint64 before = 0;
        do {
            before = readers.received();
            const auto end = std::chrono::steady_clock::now() + 100ms;
            while (std::chrono::steady_clock::now() < end) {
                QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            }
        } while (readers.received() != before);
    }

    bool isSending() const
    {
        return std::any_of(m_connections.cbegin(), m_connections.cend(),
                           [](const QTcpSocket* socket) { return socket->bytesToWrite() > 0; });
    }

    TestDatabase m_database;
    LocalStats m_localStats;
    LiveRates m_rates;
    ProfileManager m_profiles;
    ClientApiResponses m_responses{m_localStats, m_rates, m_profiles};
    ClientApiWebsocketServer m_server{[this] { return m_responses.formatAllStats(); }, m_profiles};
    QTimer* m_timer = m_server.findChild<QTimer*>();
    QList<QTcpSocket*> m_connections;
};

/// Lets every reader fall asleep again before the next beat wakes it, and checks what it got.
void waitForAll(benchmark::State& state, const Readers& readers, quint64 received)
{
    state.PauseTiming();
    require(readers.waitFor(received));
    state.ResumeTiming();
}

void beat(benchmark::State& state)
{
    Host host;
    Readers readers;
    const qint64 programs = state.range(0);
    host.connectPrograms(readers, programs);
    const quint64 bytesOfBeat = static_cast<quint64>(programs) * host.frameSize();
    quint64 sent = readers.received();
    while (state.KeepRunning()) {
        host.beat();
        sent += bytesOfBeat;
        waitForAll(state, readers, sent);
    }
}

void updateBuilt(benchmark::State& state)
{
    const Host host;
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(host.update());
    }
}

void referenceSystemCalls(benchmark::State& state)
{
    QTcpServer server;
    Readers readers; // Goes first: for it, a connection that ends is an error.
    require(server.listen(QHostAddress(QHostAddress::LocalHost)));
    std::vector<int> connections;
    for (qint64 i = 0; i < state.range(0); ++i) {
        readers.connectTo(server.serverPort());
        require(server.waitForNewConnection(10'000));
        QTcpSocket* socket = server.nextPendingConnection();
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        connections.push_back(static_cast<int>(socket->socketDescriptor()));
    }
    const std::vector<char> frame(Host().frameSize());
    quint64 sent = 0;
    while (state.KeepRunning()) {
        for (const int connection : connections) {
            require(send(connection, frame.data(), frame.size(), 0) == std::ssize(frame));
        }
        sent += connections.size() * frame.size();
        waitForAll(state, readers, sent);
    }
}

BENCHMARK(beat)->Arg(0)->Arg(1)->Arg(50)->Arg(200)->Unit(benchmark::kMicrosecond);
BENCHMARK(updateBuilt)->Unit(benchmark::kMicrosecond);
BENCHMARK(referenceSystemCalls)->Arg(1)->Arg(50)->Arg(200)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
