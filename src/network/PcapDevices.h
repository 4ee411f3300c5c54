// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Log.h"
#include "network/Interface.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// What is known of a network interface before it is decided whether to capture there. Plain value.
struct SystemInterface
{
    QString name = {};
    int index = 0;              ///< The kernel's; 0 where unknown.
    QString hardwareAddress;    ///< Empty where the interface has none.
    QStringList addresses = {}; ///< As text, without scope or prefix length.
    bool isLoopback = false;
    bool isUp = true;
};

/// One device as libpcap lists it, which need not be a network interface. Plain value.
struct PcapDevice
{
    SystemInterface interface; ///< As far as libpcap tells.
    QString description = {};  ///< Empty where libpcap has none.
};

/// A network interface to capture on. Plain value.
struct CaptureDevice
{
    Interface interface;
    bool isUp = true; ///< Until it is, no capture can be opened.
};

/// Every device that libpcap finds now; nothing, with a line in the log, where it fails.
/// Thread: main.
std::optional<QList<PcapDevice>> pcapDevices();

/// The network interfaces that exist now, as Qt tells them. Any thread.
QList<SystemInterface> systemInterfaces();

/// Those of `devices` that are to be captured, each with what `interfaces` says of it; where that
/// is empty, with what libpcap itself says. At most 200. The log tells of each device, at `level`,
/// why it is left out. Thread: main.
QList<CaptureDevice> findAllDevices(const QList<PcapDevice>& devices,
                                    const QList<SystemInterface>& interfaces,
                                    Log::Level level = Log::Level::Info);
