// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/InterfaceCounters.h"
#include "network/NetworkTrafficMonitor.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>

/// Captures nothing, and needs no permission: reads what the kernel counts of each interface in
/// "/proc/net/dev". Its counters serve at any time; there is nothing to start.
class ProcNetworkTrafficMonitor final : public QObject, public NetworkTrafficMonitor
{
    Q_OBJECT

public:
    /// `root` is where "proc" and "sys" lie.
    explicit ProcNetworkTrafficMonitor(const QString& root = QStringLiteral("/"),
                                       QObject* parent = nullptr);

    void start() override {}

    void stop() override {}

    bool isRunning() const override { return m_isSupported; }

    bool isSupported() const override { return m_isSupported; }

    void updateNetworkDevices() override { m_recordsAge.invalidate(); }

    int countThreads() const override { return 0; }

    PortTraffic getPortsBandwidth() override { return {}; }

    PortTraffic getPortsBandwidthTCP() override { return {}; }

    PortTraffic getPortsBandwidthUDP() override { return {}; }

    PortTraffic getPortsBandwidthOther() override { return {}; }

    AddressTraffic getIpBandwidth() override { return {}; }

    QList<InterfaceBandwidth> getInterfacesBandwidth() override { return {}; }

    /// One for each interface there is, less the twentieth part. Nothing for one that was not there
    /// at the last call, or that counts from a lower number than then, which it does once it was
    /// removed and made again, or went past the end of a 32-bit counter.
    QList<InterfaceBandwidth> getInterfacesCounters() override;

private:
    struct LastSeen
    {
        InterfaceCounters counters;
        int index = 0; ///< Another one where the interface was removed and made again.
    };

    QString pathOf(const QString& path) const;
    QHash<QString, Interface> existingInterfaces() const;
    void renewRecords(const QList<InterfaceCounters>& all);
    Interface recordOf(const QString& name, const QStringList& addresses);
    QByteArray read(const QString& path);

    QString m_root;
    bool m_isSupported;
    QHash<QString, LastSeen> m_lastSeen;
    QHash<QString, Interface> m_records; ///< By name.
    QElapsedTimer m_recordsAge;          ///< Invalid until they were first made.
    QSet<QString> m_unreadable;          ///< Paths that the log has told of.
};
