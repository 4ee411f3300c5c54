// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/ProxyAddress.h"

#include "base/Log.h"
#include "network/LocalNetwork.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QHostInfo>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::minutes RetryPause(1);

/// The proxy that the system wants for a connection to the internet. May take seconds. Any thread.
QNetworkProxy systemProxy(const QUrl& url)
{
    const QList<QNetworkProxy> proxies =
        QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url));
    return proxies.value(0, QNetworkProxy(QNetworkProxy::NoProxy));
}

} // namespace

ProxyAddress::ProxyAddress(QObject* parent)
    : QObject(parent)
    , m_retry(this)
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(RetryPause);
    connect(&m_retry, &QTimer::timeout, this, &ProxyAddress::lookUp);
}

ProxyAddress::~ProxyAddress()
{
    stopLookingUp();
    if (m_asking.joinable()) {
        m_asking.join();
    }
}

void ProxyAddress::follow(const QNetworkProxy& proxy)
{
    m_followsSystem = proxy.type() == QNetworkProxy::DefaultProxy;
    if (!m_followsSystem) {
        resolve(proxy);
    } else if (m_asking.joinable()) {
        m_isOutdated = true;
    } else {
        askSystem();
    }
}

void ProxyAddress::askSystem()
{
    const QUrl url(QStringLiteral("https://") + QCoreApplication::organizationDomain());
    m_asking = std::thread([this, url] {
        QMetaObject::invokeMethod(
            this, [this, proxy = systemProxy(url)] { systemAnswered(proxy); },
            Qt::QueuedConnection);
    });
}

void ProxyAddress::systemAnswered(const QNetworkProxy& proxy)
{
    m_asking.join();
    const bool isOutdated = std::exchange(m_isOutdated, false);
    if (m_followsSystem && isOutdated) {
        askSystem();
    } else if (m_followsSystem) {
        resolve(proxy);
    }
}

void ProxyAddress::resolve(const QNetworkProxy& proxy)
{
    stopLookingUp();
    m_proxy = proxy;
    const QHostAddress address(proxy.hostName());
    if (!address.isNull()) {
        use({address}); // A look-up would ask for its name.
    } else if (proxy.hostName().isEmpty()) {
        use({});
    } else {
        lookUp();
    }
}

void ProxyAddress::lookUp()
{
    m_lookUp = QHostInfo::lookupHost(m_proxy.hostName(), this, &ProxyAddress::lookedUp);
}

void ProxyAddress::lookedUp(const QHostInfo& host)
{
    if (host.lookupId() != m_lookUp) {
        return;
    }
    m_lookUp = -1;
    if (host.addresses().isEmpty()) {
        Log::debug("The proxy {} has no address yet: {}", m_proxy.hostName(), host.errorString());
        m_retry.start();
    } else {
        use(host.addresses());
    }
}

void ProxyAddress::use(const QList<QHostAddress>& addresses)
{
    // Only the private networks of IPv4 are told from the internet, so no other address matters.
    const auto ipv4 = std::ranges::find_if(addresses, [](const QHostAddress& address) {
        return address.protocol() == QAbstractSocket::IPv4Protocol;
    });
    if (ipv4 == addresses.cend()) {
        Utils::setLocalProxy(0, 0);
    } else {
        Utils::setLocalProxy(ipv4->toIPv4Address(), m_proxy.port());
    }
}

void ProxyAddress::stopLookingUp()
{
    m_retry.stop();
    if (m_lookUp != -1) {
        QHostInfo::abortHostLookup(m_lookUp);
        m_lookUp = -1;
    }
}
