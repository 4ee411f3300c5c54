// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

/// A packet socket on all interfaces with the ring of frames that the kernel fills (packet(7), and
/// Documentation/networking/packet_mmap.rst of the kernel). Unmaps and closes with its life.
///
/// A frame belongs to the kernel until it is ready, and again once it was released. Thread: one for
/// the frames; `takeDropped` from any.
class PacketRing final
{
public:
    static constexpr std::size_t FrameCount = 2048;
    static constexpr std::size_t FrameSize = 256;

    /// Opens the ring; where that fails, logs why and is not open.
    PacketRing();

    bool isOpen() const { return m_frames != nullptr; }

    /// Readable where a frame is ready.
    int descriptor() const { return m_socket.get(); }

    /// Whether the kernel has filled the frame. `index` below `FrameCount`, as in all of these.
    bool isReady(std::size_t index) const;
    /// The bytes of a frame that is ready, until it is released.
    std::span<const std::uint8_t> frame(std::size_t index) const;
    /// Hands a frame back to the kernel.
    void release(std::size_t index);

    /// The packets that found the ring full, since the last call.
    std::uint64_t takeDropped();

    /// Takes a pending error of the socket, which would otherwise end every poll at once.
    void clearError();

private:
    struct Unmap
    {
        void operator()(std::uint8_t* frames) const;
    };

    bool openSocket();
    bool makeRing();
    bool mapRing();
    bool bindToAll();
    unsigned long& status(std::size_t index) const;

    FileDescriptor m_socket;
    std::unique_ptr<std::uint8_t, Unmap> m_frames; ///< The mapped ring; null where it is not open.
};
