// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/SocketTable.h"

#include <limits>

namespace {

constexpr unsigned int FirstAttributedUser = 501;

bool isBlank(char letter)
{
    return letter == ' ' || (letter >= '\t' && letter <= '\r');
}

/// The value of a digit; 16 or more for any other letter.
unsigned int digitValue(char letter)
{
    if (letter >= '0' && letter <= '9') {
        return static_cast<unsigned int>(letter - '0');
    }
    const auto lower = static_cast<char>(letter | 0x20);
    return lower >= 'a' && lower <= 'f' ? static_cast<unsigned int>(lower - 'a') + 10U : 16U;
}

/// Walks over one line. Once something was not as expected, the rest is not read any more.
class Scanner
{
public:
    explicit Scanner(std::string_view text)
        : m_at(text.data())
        , m_end(text.data() + text.size())
    {
    }

    bool failed() const { return m_failed; }

    void colon()
    {
        m_failed = m_failed || m_at == m_end || *m_at != ':';
        m_at += m_failed ? 0 : 1;
    }

    std::uint64_t decimal() { return number(10); }

    std::uint64_t hexadecimal() { return number(16); }

private:
    /// As strtoul(3): blanks, a sign, "0x" before hexadecimal digits; the largest value in place of
    /// one that is too large.
    std::uint64_t number(unsigned int base)
    {
        skipBlanks();
        const bool negative = !m_failed && m_at != m_end && *m_at == '-';
        if (negative || (!m_failed && m_at != m_end && *m_at == '+')) {
            ++m_at;
        }
        if (base == 16 && m_end - m_at > 2 && m_at[0] == '0' && (m_at[1] | 0x20) == 'x' &&
            digitValue(m_at[2]) < base) {
            m_at += 2;
        }
        return digits(base, negative);
    }

    std::uint64_t digits(unsigned int base, bool negative)
    {
        constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
        const char* const first = m_at;
        std::uint64_t value = 0;
        bool overflows = false;
        for (; !m_failed && m_at != m_end && digitValue(*m_at) < base; ++m_at) {
            const unsigned int digit = digitValue(*m_at);
            overflows = overflows || value > (largest - digit) / base;
            value = value * base + digit;
        }
        m_failed = m_failed || m_at == first;
        if (overflows) {
            return largest;
        }
        return negative ? 0 - value : value;
    }

    void skipBlanks()
    {
        while (m_at != m_end && isBlank(*m_at)) {
            ++m_at;
        }
    }

    const char* m_at;
    const char* m_end;
    bool m_failed = false;
};

} // namespace

std::optional<SocketTable::Socket> SocketTable::parse(std::string_view line)
{
    Socket socket;
    Scanner scanner(line);
    scanner.decimal(); // number of the line
    scanner.colon();
    scanner.hexadecimal(); // local address
    scanner.colon();
    socket.localPort = static_cast<unsigned int>(scanner.hexadecimal());
    scanner.hexadecimal(); // remote address
    scanner.colon();
    socket.remotePort = static_cast<unsigned int>(scanner.hexadecimal());
    socket.state = static_cast<unsigned short>(scanner.hexadecimal());
    scanner.hexadecimal(); // bytes to send
    scanner.colon();
    scanner.hexadecimal(); // bytes received
    scanner.hexadecimal(); // timer
    scanner.colon();
    scanner.hexadecimal(); // its expiry
    scanner.hexadecimal(); // retransmissions
    socket.userId = static_cast<unsigned int>(scanner.decimal());
    scanner.decimal(); // probes
    socket.inode = scanner.decimal();
    return scanner.failed() ? std::nullopt : std::optional(socket);
}

bool SocketTable::isAttributed(const Socket& socket)
{
    return socket.userId >= FirstAttributedUser && socket.inode != 0;
}
