// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "system/InputDevicesText.h"

#include <QDir>
#include <QString>
#include <QStringList>

/// What the machine is made of, read from "/proc", "/sys" and the "hwdata" lists below a root.
/// Nothing is kept: each answer reads its files. Thread: any one at a time.
class Hardware
{
public:
    enum class Vendor
    {
        Named,
        LeftOut,
    };

    explicit Hardware(const QString& root);

    QString operatingSystem() const;
    QString processor() const;
    QString memory() const;     ///< "15.6 GiB".
    QString videocards() const; ///< Several are separated by ", ".
    QString inputDevices(InputDeviceDescription::Kind kind) const;         ///< Likewise.
    QStringList inputDeviceNames(InputDeviceDescription::Kind kind) const; ///< Each name once.
    QString model(Vendor vendor) const;

    static QString platform(); ///< The kernel and its architecture.

    /// Established TCP connections, IPv4 and IPv6.
    int tcpConnections() const;

private:
    QByteArray read(const QString& relativePath) const;
    QByteArray idList(const QString& name) const;
    QString pciVideocards() const;
    QString drmDrivers() const;
    QString dmi(const QString& field) const;

    QDir m_root;
};
