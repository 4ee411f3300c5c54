// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

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
};
