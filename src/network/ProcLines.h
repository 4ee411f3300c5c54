// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/FileDescriptor.h"

#include <QString>

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

/// Reads a table of the kernel's line by line, with as few calls as can be: the read that finds
/// nothing more is left out, since for it the kernel walks all its sockets once more. Thread: any
/// one at a time.
class ProcLines final
{
public:
    /// A file that cannot be opened has no lines.
    explicit ProcLines(const QString& path);

    /// The next line without its line feed, valid until the next call. What is too long for the
    /// buffer, which no line of the kernel's is, comes in pieces.
    std::optional<std::string_view> next();

private:
    static constexpr std::size_t BufferSize = 65536; ///< No page is larger.

    bool readMore();

    FileDescriptor m_descriptor;
    bool m_isAtEnd;
    std::string_view m_rest; ///< Of the buffer, not yet returned.
    std::array<char, BufferSize> m_buffer;
};
