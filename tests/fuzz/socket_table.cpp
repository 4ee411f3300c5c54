// SPDX-License-Identifier: GPL-3.0-or-later
// The lines of the kernel's socket tables, beside what the C library reads from them.
#include "network/ScannedSocket.h"
#include "network/SocketTable.h"

#include <algorithm>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string line(reinterpret_cast<const char*>(data), size);
    const auto socket = SocketTable::parse(line);
    // The C library ends at a zero byte, and its releases differ over "0x" without digits behind.
    const bool isComparable = std::ranges::none_of(
        line, [](char letter) { return letter == '\0' || letter == 'x' || letter == 'X'; });
    if (isComparable && socket != scannedSocket(line)) {
        std::abort();
    }
    return 0;
}
