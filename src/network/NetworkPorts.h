// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/PortDescriptions.h"

#include <QObject>
#include <QThread>

class thread_networkPortsUpdater;

/// The port descriptions in force, loaded by a thread of its own. Thread: main.
class NetworkPorts final : public QObject
{
    Q_OBJECT

public:
    explicit NetworkPorts(QObject* parent = nullptr);

    /// Lets the file that is being loaded end, and joins the thread.
    ~NetworkPorts() override;

    /// Begins to load "network-ports.csv" of the data directory, or the file built into the program
    /// where that is missing or cannot be read, and the user's own entries from
    /// "network-ports-custom.csv" beside it. Until `changed`, what was loaded before serves.
    void load(const QString& dataDirectory);

    /// Empty where there is none.
    QString description(int port, Utils::TrafficType type) const
    {
        return m_descriptions.description(port, type);
    }

    bool isKnown(int port, Utils::TrafficType type) const
    {
        return m_descriptions.isKnown(port, type);
    }

Q_SIGNALS:
    /// After each file of the two.
    void changed();

private:
    /// Runs on the updater's thread.
    void handOver(const QHash<int, QString>& tcp, const QHash<int, QString>& udp);

    PortDescriptions m_descriptions;
    QThread m_thread;
    thread_networkPortsUpdater* m_updater; ///< Lives in the thread, which deletes it as it ends.
};
