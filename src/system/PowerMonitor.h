// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

/// Tells of sleep, waking and the end of the session, as logind announces them on the system bus
/// (org.freedesktop.login1(5)). Without a bus it stays silent, and the log says so once.
///
/// No inhibitor lock is taken: what was counted is written every few seconds anyway, and a client
/// that holds up a laptop's lid is worse than two seconds of keys written after waking. Thread:
/// main.
class PowerMonitor : public QObject
{
    Q_OBJECT

public:
    /// `service` is the only bus name whose announcements count.
    explicit PowerMonitor(QDBusConnection bus = QDBusConnection::systemBus(),
                          const QString& service = QStringLiteral("org.freedesktop.login1"),
                          QObject* parent = nullptr);

Q_SIGNALS:
    void suspended();     ///< The machine is about to sleep.
    void resumed();       ///< It woke up.
    void sessionEnding(); ///< It is about to shut down or restart.

private Q_SLOTS:
    void prepareForSleep(bool starting);
    void prepareForShutdown(bool starting);

private:
    void listen(const QString& service, const QString& signal, const char* slot);

    QDBusConnection m_bus;
};
