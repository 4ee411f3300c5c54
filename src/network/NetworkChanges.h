// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/FileDescriptor.h"

#include <QObject>
#include <QTimer>

#include <memory>

class QSocketNotifier;

/// Tells when an interface of this machine came, went, or changed its addresses, as the kernel
/// announces it (rtnetlink(7)). Several announcements in a row become one signal. Thread: main.
class NetworkChanges final : public QObject
{
    Q_OBJECT

public:
    /// Where the kernel's announcements cannot be had, the log says so, and no signal comes.
    explicit NetworkChanges(QObject* parent = nullptr);
    ~NetworkChanges() override;

Q_SIGNALS:
    void changed();

private:
    void readAnnouncements();

    FileDescriptor m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier; ///< Null without a socket.
    QTimer m_settled; ///< Runs from the first announcement until the signal.
};
