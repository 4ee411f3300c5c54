// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/DeviceNode.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

DeviceNode::DeviceNode(const struct stat& status)
    : m_status(status)
{
}

std::optional<DeviceNode> DeviceNode::at(const QString& path)
{
    struct stat status = {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0) {
        return std::nullopt;
    }
    return DeviceNode(status);
}

bool DeviceNode::isSameNode(const DeviceNode& other) const
{
    return m_status.st_dev == other.m_status.st_dev && m_status.st_ino == other.m_status.st_ino;
}

bool DeviceNode::isStillUnreadable(const QString& path) const
{
    const auto now = at(path);
    return now && isSameNode(*now) &&
           (hasSameRights(*now) ||
            faccessat(AT_FDCWD, QFile::encodeName(path).constData(), R_OK, AT_EACCESS) != 0);
}

bool DeviceNode::hasSameRights(const DeviceNode& other) const
{
    const struct stat& a = m_status;
    const struct stat& b = other.m_status;
    // The change time alone would miss two changes within one tick of the kernel's coarse clock.
    return a.st_mode == b.st_mode && a.st_uid == b.st_uid && a.st_gid == b.st_gid &&
           a.st_ctim.tv_sec == b.st_ctim.tv_sec && a.st_ctim.tv_nsec == b.st_ctim.tv_nsec;
}
