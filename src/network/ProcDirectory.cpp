// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/ProcDirectory.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <string_view>

// The buffer is left as it is: the kernel fills what is read of it.
ProcDirectory::ProcDirectory(int parent, const char* path) // NOLINT(*-pro-type-member-init)
    : m_descriptor(::openat(parent, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
}

std::optional<int> ProcDirectory::next()
{
    while (m_at < m_filled || readMore()) {
        const auto* entry = reinterpret_cast<const dirent64*>(m_buffer.data() + m_at);
        m_at += entry->d_reclen;
        const std::string_view name(entry->d_name);
        int number = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
        if (error == std::errc() && end == name.data() + name.size()) {
            return number;
        }
    }
    return std::nullopt;
}

bool ProcDirectory::readMore()
{
    const ssize_t size =
        m_descriptor.isValid() ? ::getdents64(descriptor(), m_buffer.data(), m_buffer.size()) : 0;
    m_at = 0;
    m_filled = size > 0 ? static_cast<std::size_t>(size) : 0;
    return m_filled > 0;
}
