// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QNetworkProxy>
#include <QObject>
#include <QTimer>

#include <thread>

class QHostAddress;
class QHostInfo;

/// Keeps `Utils::setLocalProxy` at the proxy in use. Nobody waits for it: the system is asked by a
/// thread of its own, since its configuration may be a script somewhere on the network, and a name
/// is looked up in the background, again each minute until that succeeds. Thread: main.
class ProxyAddress final : public QObject
{
    Q_OBJECT

public:
    explicit ProxyAddress(QObject* parent = nullptr);

    /// Waits for the answer of a system that is being asked.
    ~ProxyAddress() override;

    /// The proxy that connections are made through from now on. `QNetworkProxy::DefaultProxy`
    /// stands for the system's. The address of the one before stays until the new one is known.
    void follow(const QNetworkProxy& proxy);

private:
    void askSystem();
    void systemAnswered(const QNetworkProxy& proxy);
    void resolve(const QNetworkProxy& proxy);
    void lookUp();
    void lookedUp(const QHostInfo& host);
    void use(const QList<QHostAddress>& addresses);
    void stopLookingUp();

    bool m_followsSystem = false;
    bool m_isOutdated = false; ///< The system was to be asked again while it was being asked.
    std::thread m_asking;
    QNetworkProxy m_proxy; ///< Whose name is being looked up.
    int m_lookUp = -1;     ///< Qt's number of the look-up under way.
    QTimer m_retry;
};
