// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/PacketRing.h"
#include "network/RingFrame.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <linux/if_arp.h>
#include <linux/if_packet.h>

#include <array>
#include <cstring>
#include <vector>

namespace {

using Frame = std::array<std::uint8_t, PacketRing::FrameSize>;

constexpr std::size_t AddressOffset = 32; ///< Of the sender's address, behind the frame's header.

/// A frame as the kernel fills it, and what is put into it.
struct Fields
{
    tpacket_hdr header = {TP_STATUS_USER, 1514, 190, 66, 80, 0, 0};
    sockaddr_ll address = {AF_PACKET, 0, 300, ARPHRD_ETHER, PACKET_HOST, 6, {}};

    Frame frame() const
    {
        Frame result{};
        std::memcpy(result.data(), &header, sizeof header);
        std::memcpy(result.data() + AddressOffset, &address, sizeof address);
        result[RingFrame::NetworkOffset] = 0x45;
        return result;
    }
};

} // namespace

Q_DECLARE_METATYPE(Fields)

class RingFrameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void reads_data()
    {
        QTest::addColumn<Fields>("fields");
        QTest::addColumn<qsizetype>("captured"); // -1: does not count.
        const auto add = [](const char* name, qsizetype captured, auto change) {
            Fields fields;
            change(fields);
            QTest::newRow(name) << fields << captured;
        };
        add("full frame", 176, [](Fields&) {});
        add("short packet", 29, [](Fields& fields) { fields.header.tp_snaplen = 43; });
        add("more captured than fits", 176, [](Fields& f) { f.header.tp_snaplen = 1514; });
        add("endless", 176, [](Fields& fields) { fields.header.tp_snaplen = UINT32_MAX; });
        add("tagged, with the tag in it", 172, [](Fields& fields) { fields.header.tp_mac = 62; });
        add("nothing but the link header", -1, [](Fields& f) { f.header.tp_snaplen = 14; });
        add("nothing at all", -1, [](Fields& fields) { fields.header.tp_snaplen = 0; });
        add("link header outside", -1, [](Fields& fields) { fields.header.tp_mac = UINT16_MAX; });
        add("link header over the address", -1, [](Fields& f) { f.header.tp_mac = 40; });
        add("network header elsewhere", -1, [](Fields& fields) { fields.header.tp_net = 96; });
        add("loopback", -1, [](Fields& f) { f.address.sll_hatype = ARPHRD_LOOPBACK; });
        add("no link header", -1, [](Fields& f) { f.address.sll_hatype = ARPHRD_NONE; });
    }

    void reads()
    {
        QFETCH(const Fields, fields);
        QFETCH(const qsizetype, captured);
        const Frame frame = fields.frame();
        const auto read = RingFrame::decode(frame);
        QCOMPARE(read ? static_cast<qsizetype>(read->captured.size()) : -1, captured);
        if (read) {
            QCOMPARE(read->captured.data(), frame.data() + 80);
            QCOMPARE(read->version, 4);
            QCOMPARE(read->length, 1514);
            QCOMPARE(read->interfaceIndex, 300);
            QCOMPARE(read->direction, NetworkPacketHandler::Direction::Incoming);
        }
    }

    void tellsTheDirectionByThePacketType()
    {
        Fields fields;
        for (const int type :
             {PACKET_HOST, PACKET_BROADCAST, PACKET_MULTICAST, PACKET_OTHERHOST, PACKET_OUTGOING}) {
            fields.address.sll_pkttype = static_cast<unsigned char>(type);
            QCOMPARE(RingFrame::decode(fields.frame())->direction,
                     type == PACKET_OUTGOING ? NetworkPacketHandler::Direction::Outgoing
                                             : NetworkPacketHandler::Direction::Incoming);
        }
    }

    void readsNothingBeyondAFrameCutShort()
    {
        const Frame frame = Fields().frame();
        for (std::size_t size = 0; size <= frame.size(); ++size) {
            // Of this size exactly, so that a sanitizer sees a read beyond.
            const std::vector<std::uint8_t> cut(frame.begin(),
                                                frame.begin() + static_cast<qsizetype>(size));
            const auto read = RingFrame::decode(cut);
            QCOMPARE(read.has_value(), size > RingFrame::NetworkOffset);
            QVERIFY(!read || read->captured.size() == size - RingFrame::NetworkOffset);
        }
    }
};

REGISTER_TEST(RingFrameTest);

#include "RingFrameTest.moc"
