// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/SocketWalk.h"

#include "base/ExecutableLink.h"

#include <QFile>

#include <fcntl.h>
#include <spdlog/fmt/fmt.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// Beyond it, sockets not asked for just now are forgotten.
constexpr qsizetype MostHolders = 4096;

constexpr int LastStandardStream = STDERR_FILENO;

/// The inode in a link such as "socket:[12345]"; empty for the link of any other descriptor.
std::optional<std::uint64_t> inodeOf(std::string_view link)
{
    constexpr std::string_view before("socket:[");
    std::uint64_t inode = 0;
    if (!link.starts_with(before) || !link.ends_with(']')) {
        return std::nullopt;
    }
    const char* const last = link.data() + link.size() - 1;
    const auto [end, error] = std::from_chars(link.data() + before.size(), last, inode);
    return error == std::errc() && end == last ? std::optional(inode) : std::nullopt;
}

/// The inode of the socket that the link at `path` leads to; empty where it leads elsewhere, or is
/// gone.
std::optional<std::uint64_t> socketAt(const ProcDirectory& directory, const std::string& path)
{
    // Longer targets are files, and are cut off.
    constexpr std::size_t longest = 64;
    std::array<char, longest> link; // NOLINT(*-member-init): filled by the kernel
    const ssize_t length =
        ::readlinkat(directory.descriptor(), path.c_str(), link.data(), link.size());
    return length < 0 ? std::nullopt
                      : inodeOf(std::string_view(link.data(), static_cast<std::size_t>(length)));
}

std::string linkOf(const SocketWalk::Holder& holder)
{
    return fmt::format("{}/fd/{}", holder.process, holder.descriptor);
}

} // namespace

SocketWalk::SocketWalk(QString proc, const Sockets& sockets, Holders& holders)
    : m_proc(std::move(proc))
    , m_sockets(sockets)
    , m_holders(holders)
    , m_processes(AT_FDCWD, QFile::encodeName(m_proc).constData())
    , m_wanted(sockets.cbegin(), sockets.cend())
{
}

SocketWalk::Owners SocketWalk::run()
{
    const QSet<int> known = askHolders();
    std::vector<int> processes(known.cbegin(), known.cend());
    for (const int process : processes) {
        lookInto(process);
    }
    while (!m_wanted.isEmpty()) {
        const std::optional<int> process = m_processes.next();
        if (!process) {
            break;
        }
        if (!known.contains(*process)) {
            processes.push_back(*process);
            lookInto(*process);
        }
    }
    for (const int process : processes) {
        lookAtStandardStreams(process);
    }
    forgetOldHolders();
    return m_owners;
}

QSet<int> SocketWalk::askHolders()
{
    QSet<int> processes;
    for (auto holder = m_holders.cbegin(); holder != m_holders.cend();) {
        const auto socket = m_sockets.constFind(holder.key());
        const bool isAsked = socket != m_sockets.cend() && m_wanted.contains(*socket);
        if (isAsked && socketAt(m_processes, linkOf(*holder)) != holder.key()) {
            holder = m_holders.erase(holder);
            continue;
        }
        if (isAsked) {
            attribute(holder->process, *socket);
        }
        processes.insert(holder->process);
        ++holder;
    }
    return processes;
}

void SocketWalk::lookInto(int process)
{
    if (m_wanted.isEmpty()) {
        return;
    }
    ProcDirectory descriptors(m_processes.descriptor(), fmt::format("{}/fd", process).c_str());
    while (!m_wanted.isEmpty()) {
        const std::optional<int> descriptor = descriptors.next();
        if (!descriptor) {
            return;
        }
        if (*descriptor > LastStandardStream) {
            take({process, *descriptor}, socketAt(descriptors, std::to_string(*descriptor)));
        }
    }
}

void SocketWalk::lookAtStandardStreams(int process)
{
    for (int descriptor = 0; descriptor <= LastStandardStream && !m_wanted.isEmpty();
         ++descriptor) {
        take({process, descriptor}, socketAt(m_processes, linkOf({process, descriptor})));
    }
}

void SocketWalk::take(const Holder& holder, std::optional<std::uint64_t> inode)
{
    const auto socket = inode ? m_sockets.constFind(*inode) : m_sockets.cend();
    if (socket != m_sockets.cend() && attribute(holder.process, *socket)) {
        m_holders.insert(*inode, holder);
    }
}

bool SocketWalk::attribute(int process, unsigned short port)
{
    if (!m_wanted.contains(port)) {
        return false;
    }
    const QString path = executable(process);
    if (path.isEmpty()) {
        return false;
    }
    m_owners.insert(port, path);
    m_wanted.remove(port);
    return true;
}

QString SocketWalk::executable(int process)
{
    auto known = m_executables.find(process);
    if (known == m_executables.end()) {
        int error = 0; // Whatever it is, the process owns nothing.
        const QString link = m_proc + QStringLiteral("/%1/exe").arg(process);
        known = m_executables.insert(process, ExecutableLink::target(link, error));
    }
    return *known;
}

void SocketWalk::forgetOldHolders()
{
    if (m_holders.size() > MostHolders) {
        m_holders.removeIf([this](auto holder) { return !m_sockets.contains(holder.key()); });
    }
}
