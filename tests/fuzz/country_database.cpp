// SPDX-License-Identifier: GPL-3.0-or-later
// Opens arbitrary bytes as a database of countries and asks for addresses of both families. What it
// answers is shown and stored, so it has to be two capitals.
#include "network/CountryDatabase.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool isSound(const QString& code)
{
    const auto isCapital = [](QChar letter) { return letter >= u'A' && letter <= u'Z'; };
    return code == CountryDatabase::unknownCode() ||
           (code.size() == 2 && isCapital(code[0]) && isCapital(code[1]));
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const int file = memfd_create("fuzz", MFD_CLOEXEC);
    if (file < 0 || write(file, data, size) != static_cast<ssize_t>(size)) {
        std::abort();
    }
    CountryDatabase countries;
    const QString error = countries.open(QStringLiteral("/proc/self/fd/%1").arg(file));
    close(file);
    if (error.isEmpty() != countries.isOpen()) {
        std::abort();
    }
    constexpr std::uint32_t step = 0x01f3'7b55;
    IpAddress ipv6;
    ipv6.family = IpAddress::Ipv6;
    for (std::uint32_t i = 1; i < 64; ++i) {
        // Public addresses alone: 11.0.0.0/8 upwards, and 2000::/3.
        const IpAddress ipv4 = IpAddress::fromIpv4(0x0b00'0000 + (i * step & 0x5fff'ffff));
        ipv6.bytes[0] = static_cast<std::uint8_t>(0x20 + i % 0x20);
        ipv6.bytes[i % 15 + 1] = static_cast<std::uint8_t>(i * step >> 24);
        for (const IpAddress& address : {ipv4, ipv6}) {
            const QString code = countries.countryCode(address);
            if (code != CountryDatabase::localCode() && !isSound(code)) {
                std::abort();
            }
        }
    }
    return 0;
}
