// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHashFunctions>

#include <array>
#include <compare>
#include <cstdint>

/// One IPv4 or IPv6 address. Plain value, hashable and ordered (IPv4 before IPv6, then by its
/// bytes).
struct IpAddress
{
    bool isIpv6 = false;
    /// In network byte order; an IPv4 address uses the first four bytes, the others stay zero.
    std::array<std::uint8_t, 16> bytes{};

    friend auto operator<=>(const IpAddress&, const IpAddress&) = default;
};

inline size_t qHash(const IpAddress& address, size_t seed = 0) noexcept
{
    return qHashBits(address.bytes.data(), address.bytes.size(), seed + (address.isIpv6 ? 1U : 0U));
}
