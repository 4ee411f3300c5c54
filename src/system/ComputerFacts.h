// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "system/Hardware.h"

#include <QList>
#include <QSize>
#include <QString>
#include <QVariant>

/// One screen, as the desktop tells it. Plain value.
struct MonitorFacts
{
    QString id;   ///< Its connector or its model.
    QSize pixels; ///< Of the screen itself, not of a scaled desktop.
};

/// What this computer is, as its owner sees it on the account's page. Nothing is kept: each answer
/// reads its files. Thread: any one at a time.
class ComputerFacts
{
public:
    enum class NetworkMonitor
    {
        Supported,
        Unsupported,
    };

    static constexpr qsizetype LongestText = 256; ///< Characters; what is longer is cut there.

    /// Below `root` lie "proc", "sys", "etc" and "usr".
    explicit ComputerFacts(const QString& root);

    /// The facts by name. "ComputerModel", "ComputerOS", "VideoInfo", "CPUInfo", "MemoryInfo",
    /// "ComputerPlatform" and "isNetworkMonitorSupported" ("true" or "false") are texts, empty
    /// where the machine does not tell. "KeyboardInfo", "MouseInfo" and "TrackpadInfo" are lists of
    /// maps with a "name", "MonitorInfo" is one of maps with "id", "width" and "height".
    QVariantMap read(const QList<MonitorFacts>& monitors, NetworkMonitor networkMonitor) const;

private:
    QVariantList inputDevices(InputDeviceDescription::Kind kind) const;

    Hardware m_hardware;
};
