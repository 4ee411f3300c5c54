// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/DeviceNode.h"

#include <QFile>

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

bool operator==(const DeviceNode& left, const DeviceNode& right)
{
    const struct stat& a = left.m_status;
    const struct stat& b = right.m_status;
    // The change time alone would miss two changes within one tick of the kernel's coarse clock.
    return left.isSameNode(right) && a.st_mode == b.st_mode && a.st_uid == b.st_uid &&
           a.st_gid == b.st_gid && a.st_ctim.tv_sec == b.st_ctim.tv_sec &&
           a.st_ctim.tv_nsec == b.st_ctim.tv_nsec;
}
