// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QTcpSocket>
#include <QtEndian>

#include <limits>

/// What a WebSocket client sends, byte by byte: for what no well-behaved client does.
namespace WebsocketBytes {

inline QByteArray handshake()
{
    return "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
           "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n";
}

inline bool isUpgraded(QTcpSocket& socket)
{
    const QByteArray status = "HTTP/1.1 101 ";
    return socket.peek(status.size()) == status;
}

enum class Part
{
    Only = 0x81,
    First = 0x01,
    Middle = 0x00,
    Last = 0x80,
};

/// The beginning of a frame of text, masked with zeros: RFC 6455, section 5.2.
inline QByteArray frameHeader(Part part, quint64 size)
{
    constexpr quint8 masked = 0x80;
    constexpr quint8 twoBytesFollow = 126;
    constexpr quint8 eightBytesFollow = 127;
    QByteArray length;
    auto first = static_cast<quint8>(size);
    if (size > std::numeric_limits<quint16>::max()) {
        first = eightBytesFollow;
        length.resize(sizeof(quint64));
        qToBigEndian(size, length.data());
    } else if (size >= twoBytesFollow) {
        first = twoBytesFollow;
        length.resize(sizeof(quint16));
        qToBigEndian(static_cast<quint16>(size), length.data());
    }
    QByteArray header(1, static_cast<char>(part));
    header += static_cast<char>(masked | first);
    constexpr int maskBytes = 4;
    return header + length + QByteArray(maskBytes, '\0');
}

inline QByteArray frame(const QByteArray& payload, Part part = Part::Only)
{
    return frameHeader(part, static_cast<quint64>(payload.size())) + payload;
}

} // namespace WebsocketBytes
