// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/ProcLines.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace {

/// The kernel fills a page at each read as long as the next line fits in (seq_read_iter() of
/// fs/seq_file.c). So where a longest line would have fitted in, there was none.
bool endsTable(std::size_t justRead, std::size_t room)
{
    constexpr std::size_t longestLine = 512;
    static const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    return justRead + longestLine <= std::min(page, room);
}

} // namespace

// The buffer is left as it is until it is read into.
ProcLines::ProcLines(const QString& path) // NOLINT(*-pro-type-member-init)
    : m_descriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC))
    , m_isAtEnd(!m_descriptor.isValid())
{
}

std::optional<std::string_view> ProcLines::next()
{
    std::size_t end = m_rest.find('\n');
    while (end == std::string_view::npos && readMore()) {
        end = m_rest.find('\n');
    }
    if (m_rest.empty()) {
        return std::nullopt;
    }
    const std::string_view line = m_rest.substr(0, end);
    m_rest.remove_prefix(end == std::string_view::npos ? m_rest.size() : end + 1);
    return line;
}

bool ProcLines::readMore()
{
    const std::size_t kept = m_rest.size();
    if (m_isAtEnd || kept == m_buffer.size()) {
        return false;
    }
    if (kept > 0) {
        std::memmove(m_buffer.data(), m_rest.data(), kept);
    }
    const ssize_t size = ::read(m_descriptor.get(), m_buffer.data() + kept, m_buffer.size() - kept);
    const std::size_t added = size > 0 ? static_cast<std::size_t>(size) : 0;
    m_isAtEnd = endsTable(added, m_buffer.size() - kept);
    m_rest = std::string_view(m_buffer.data(), kept + added);
    return added > 0;
}
