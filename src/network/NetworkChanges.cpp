// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/NetworkChanges.h"

#include "base/Log.h"

#include <QSocketNotifier>

#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>

using namespace std::chrono_literals;

namespace {

/// An interface that comes up is announced some ten times in a row.
constexpr std::chrono::milliseconds SettleTime = 100ms;

FileDescriptor openAnnouncements()
{
    FileDescriptor result(
        socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
    sockaddr_nl address = {};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
    if (!result.isValid() ||
        bind(result.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        Log::warn("Unable to follow changes of the network interfaces: {}", std::strerror(errno));
        return {};
    }
    return result;
}

} // namespace

NetworkChanges::NetworkChanges(QObject* parent)
    : QObject(parent)
    , m_socket(openAnnouncements())
{
    m_settled.setSingleShot(true);
    m_settled.setInterval(SettleTime);
    connect(&m_settled, &QTimer::timeout, this, &NetworkChanges::changed);
    if (m_socket.isValid()) {
        m_notifier = std::make_unique<QSocketNotifier>(m_socket.get(), QSocketNotifier::Read);
        connect(m_notifier.get(), &QSocketNotifier::activated, this,
                &NetworkChanges::readAnnouncements);
    }
}

NetworkChanges::~NetworkChanges() = default;

/// What they say is not asked: whoever is told looks at everything anew. Those that did not fit
/// into the socket's queue (ENOBUFS) were changes, too.
void NetworkChanges::readAnnouncements()
{
    std::array<char, 64> beginning{};
    bool isAnnounced = false;
    ssize_t length = 0;
    do {
        length = recv(m_socket.get(), beginning.data(), beginning.size(), 0);
        isAnnounced = isAnnounced || length >= 0 || errno == ENOBUFS;
    } while (length >= 0 || errno == ENOBUFS || errno == EINTR);
    if (isAnnounced && !m_settled.isActive()) {
        m_settled.start();
    }
}
