// SPDX-License-Identifier: GPL-3.0-or-later
// Sends UDP packets of one size at one rate, and prints how many and in what time.
//
//   PacketSender ADDRESS PORT SIZE RATE SECONDS
//
// ADDRESS is IPv4 or IPv6, SIZE what follows the UDP header in bytes, RATE in packets a second.
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::size_t BatchSize = 64; ///< Packets handed to the kernel at once, at most.
constexpr auto Tick = 250us;
constexpr auto LongestDelay = 2ms;

/// A socket connected to the address, or -1.
int connectTo(const char* address, const char* port)
{
    addrinfo hints = {};
    hints.ai_socktype = SOCK_DGRAM;
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    addrinfo* found = nullptr;
    if (getaddrinfo(address, port, &hints, &found) != 0) {
        return -1;
    }
    const int result = socket(found->ai_family, found->ai_socktype | SOCK_CLOEXEC, 0);
    const bool done = result != -1 && connect(result, found->ai_addr, found->ai_addrlen) == 0;
    freeaddrinfo(found);
    return done ? result : -1;
}

/// The same packet many times, as sendmmsg(2) takes it.
class Batch
{
public:
    explicit Batch(std::size_t size)
        : m_payload(size, 'x')
        , m_vector{m_payload.data(), m_payload.size()}
    {
        for (mmsghdr& message : m_messages) {
            message.msg_hdr.msg_iov = &m_vector;
            message.msg_hdr.msg_iovlen = 1;
        }
    }

    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

    /// Returns how many were sent.
    std::uint64_t send(int socket, std::uint64_t count)
    {
        const auto most = static_cast<unsigned int>(std::min<std::uint64_t>(count, BatchSize));
        return static_cast<std::uint64_t>(
            std::max(sendmmsg(socket, m_messages.data(), most, 0), 0));
    }

private:
    std::string m_payload;
    iovec m_vector;
    std::array<mmsghdr, BatchSize> m_messages{};
};

/// Sends what is due at every tick. What is due because this program itself got no processor for
/// long is left out: it would come as a burst of another rate.
std::uint64_t sendAtRate(int socket, Batch& batch, double rate, Clock::duration duration)
{
    std::uint64_t sent = 0;
    double due = 0;
    const Clock::time_point end = Clock::now() + duration;
    Clock::time_point last = Clock::now();
    while (last < end) {
        std::this_thread::sleep_until(last + Tick);
        const Clock::time_point now = Clock::now();
        const Clock::duration passed = std::min<Clock::duration>(now - last, LongestDelay);
        last = now;
        due += rate * std::chrono::duration<double>(passed).count();
        while (due >= 1) {
            const std::uint64_t some = batch.send(socket, static_cast<std::uint64_t>(due));
            if (some == 0) {
                break;
            }
            sent += some;
            due -= static_cast<double>(some);
        }
    }
    return sent;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 6) {
        std::fprintf(stderr, "usage: %s ADDRESS PORT SIZE RATE SECONDS\n", argv[0]);
        return EXIT_FAILURE;
    }
    const int socket = connectTo(argv[1], argv[2]);
    if (socket == -1) {
        std::perror("PacketSender");
        return EXIT_FAILURE;
    }
    Batch batch(std::strtoul(argv[3], nullptr, 10));
    const std::chrono::duration<double> duration(std::strtod(argv[5], nullptr));
    const Clock::time_point begin = Clock::now();
    const std::uint64_t sent = sendAtRate(socket, batch, std::strtod(argv[4], nullptr),
                                          std::chrono::duration_cast<Clock::duration>(duration));
    const std::chrono::duration<double> passed = Clock::now() - begin;
    close(socket);
    std::printf("%llu packets in %.3f s\n", static_cast<unsigned long long>(sent), passed.count());
}
