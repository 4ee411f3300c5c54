// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>

#include <array>
#include <bit>
#include <compare>
#include <cstdint>
#include <cstring>

/// One IPv4 or IPv6 address: 17 bytes, hashable and totally ordered (IPv6 before IPv4, and within a
/// family by the bytes as kept). Plain value; 0.0.0.0 by default.
struct IpAddress
{
    using Bytes = std::array<std::uint8_t, 16>;

    static constexpr std::uint8_t Ipv4 = 1;
    static constexpr std::uint8_t Ipv6 = 0;

    std::uint8_t family = Ipv4;
    /// An IPv4 address is a number in the host's byte order in the first four, with the others
    /// zero; an IPv6 address is its sixteen bytes in network order.
    Bytes bytes{};

    static constexpr IpAddress fromIpv4(std::uint32_t address) noexcept
    {
        return {Ipv4, std::bit_cast<Bytes>(std::array<std::uint32_t, 4>{address})};
    }

    /// Reads 16 bytes.
    static IpAddress fromIpv6(const std::uint8_t* networkOrder) noexcept
    {
        IpAddress result;
        result.family = Ipv6;
        std::memcpy(result.bytes.data(), networkOrder, result.bytes.size());
        return result;
    }

    bool isIpv4() const noexcept { return family == Ipv4; }

    /// The address as a number in the host's byte order. Only of an IPv4 address.
    std::uint32_t ipv4() const noexcept
    {
        std::uint32_t address = 0;
        std::memcpy(&address, bytes.data(), sizeof address);
        return address;
    }

    friend auto operator<=>(const IpAddress&, const IpAddress&) = default;

    /// By whole words, which the array's own comparison is not: each packet does this once or more.
    friend bool operator==(const IpAddress& one, const IpAddress& other) noexcept
    {
        return one.family == other.family &&
               std::memcmp(one.bytes.data(), other.bytes.data(), one.bytes.size()) == 0;
    }
};

/// Over the bytes that the family uses. Whoever invents addresses does not know the seed, and so
/// cannot make them meet in one slot.
inline size_t qHash(const IpAddress& address, size_t seed = 0) noexcept
{
    return address.isIpv4() ? qHash(address.ipv4(), seed)
                            : qHashBits(address.bytes.data(), address.bytes.size(), seed);
}
