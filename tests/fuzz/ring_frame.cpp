// SPDX-License-Identifier: GPL-3.0-or-later
// Frames of a packet ring, with any header and any packet in them, one after the other.
#include "network/NetworkPacketHandlerListener.h"
#include "network/PacketRing.h"
#include "network/RingFrame.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

class Listener final : public NetworkPacketHandlerListener
{
public:
    explicit Listener(const RingFrame& frame)
        : m_frame(frame)
    {
    }

    void incrementTraffic(bool upload, const IpAddress&, unsigned short, unsigned int bytes,
                          unsigned int internetBytes, int interfaceIndex, Utils::TrafficType,
                          unsigned short) override
    {
        const bool isOutgoing = m_frame.direction == NetworkPacketHandler::Direction::Outgoing;
        if (upload != isOutgoing || bytes != m_frame.length || internetBytes > bytes ||
            interfaceIndex != m_frame.interfaceIndex) {
            std::abort();
        }
    }

private:
    const RingFrame& m_frame;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    for (std::size_t begin = 0; begin < size; begin += PacketRing::FrameSize) {
        // Of its own size exactly, so that a read beyond it is seen.
        const std::size_t length = std::min(size - begin, PacketRing::FrameSize);
        const std::vector<std::uint8_t> bytes(data + begin, data + begin + length);
        if (const auto frame = RingFrame::decode(bytes)) {
            Listener listener(*frame);
            NetworkPacketHandler::handle(frame->version, frame->captured, frame->length,
                                         frame->direction, {}, listener, frame->interfaceIndex);
        }
    }
    return 0;
}
