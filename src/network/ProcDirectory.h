// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/FileDescriptor.h"

#include <array>
#include <cstddef>
#include <optional>

/// A directory of the kernel's whose entries are numbers, such as "/proc" (processes) and
/// "/proc/<pid>/fd" (descriptors): read straight by getdents64(2), since thousands are opened in a
/// row. Thread: any one at a time.
class ProcDirectory final
{
public:
    /// Opens `path`, relative to the directory `parent` where it does not begin with "/".
    ProcDirectory(int parent, const char* path);

    /// -1 where the directory does not exist or may not be read.
    int descriptor() const { return m_descriptor.get(); }

    /// The next number; empty after the last one, and where the directory has vanished or could not
    /// be opened. Other entries are passed over.
    std::optional<int> next();

private:
    static constexpr std::size_t BufferSize = 8192;

    bool readMore();

    FileDescriptor m_descriptor;
    std::size_t m_at = 0;
    std::size_t m_filled = 0;
    alignas(std::max_align_t) std::array<char, BufferSize> m_buffer;
};
