// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <sys/stat.h>

#include <optional>

/// Which node stands at a path, and with what rights: enough to tell whether opening it may end
/// differently than the last time. Plain value.
class DeviceNode final
{
public:
    /// The node at `path`; nothing where there is none.
    static std::optional<DeviceNode> at(const QString& path);

    /// Whether both are the same node, whatever happened to its rights. A path that was removed and
    /// made again holds another node, as long as the former is still open somewhere.
    bool isSameNode(const DeviceNode& other) const;

    /// Whether opening `path`, which failed with this node, would fail again: it is the same node,
    /// and either nothing about it has changed or reading it is not allowed.
    bool isStillUnreadable(const QString& path) const;

private:
    explicit DeviceNode(const struct stat& status);

    bool hasSameRights(const DeviceNode& other) const;

    struct stat m_status;
};
