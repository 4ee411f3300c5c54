// SPDX-License-Identifier: GPL-3.0-or-later
// What the kernel says of its interfaces, and the frames that come in through them.
#include "network/EthernetFrame.h"
#include "network/InterfaceCounters.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayView text(data, static_cast<qsizetype>(size));
    if (interfaceCounters(text).size() > text.count('\n')) {
        std::abort(); // More interfaces than lines behind the header.
    }
    const std::optional<IpPacket> packet = ipPacketIn({data, size});
    if (packet && packet->captured.data() + packet->captured.size() != data + size) {
        std::abort(); // Not the rest of the frame.
    }
    return 0;
}
