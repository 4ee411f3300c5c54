// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/WebPages.h"

#include <QHostAddress>
#include <QNetworkInterface>
#include <QRegularExpression>

#include <optional>

namespace {

constexpr quint16 HttpDefaultPort = 80;

/// What a Host header holds: RFC 9110, section 7.2.
struct Authority
{
    QString name;         ///< Empty where it is an address.
    QHostAddress address; ///< Null where it is a name.
    quint16 port = HttpDefaultPort;
};

/// Nothing where the text is no host with or without a port.
std::optional<Authority> parse(const QString& text)
{
    static const QRegularExpression form(
        QStringLiteral(R"(\A(?:\[([0-9A-Fa-f:.]+)\]|([A-Za-z0-9._-]+))(?::([0-9]{0,5}))?\z)"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    Authority authority;
    if (const QString port = match.captured(3); !port.isEmpty()) {
        bool fits = false;
        authority.port = port.toUShort(&fits);
        if (!fits) {
            return std::nullopt;
        }
    }
    const QString bracketed = match.captured(1);
    authority.address = QHostAddress(bracketed.isEmpty() ? match.captured(2) : bracketed);
    const bool isIpv6 = authority.address.protocol() == QAbstractSocket::IPv6Protocol;
    if (isIpv6 == bracketed.isEmpty()) {
        return std::nullopt;
    }
    authority.name = authority.address.isNull() ? match.captured(2) : QString();
    return authority;
}

bool isOwnName(const QString& name, const QString& machineName)
{
    const auto is = [&name](const QString& own) {
        return !own.isEmpty() && name.compare(own, Qt::CaseInsensitive) == 0;
    };
    return is(QStringLiteral("localhost")) || is(machineName) ||
           is(machineName.section(QLatin1Char('.'), 0, 0));
}

bool isOwnAddress(const QHostAddress& address)
{
    return address.isLoopback() || QNetworkInterface::allAddresses().contains(address);
}

} // namespace

bool WebPages::isOwnHost(const QString& host, const QString& machineName)
{
    if (host.isEmpty()) {
        return true;
    }
    const std::optional<Authority> authority = parse(host);
    return authority && (!authority->address.isNull() || isOwnName(authority->name, machineName));
}

bool WebPages::isOwnOrigin(const QString& origin, quint16 httpPort, const QString& machineName)
{
    if (origin.isEmpty() || origin == QLatin1String("null") || origin == QLatin1String("file://")) {
        return true;
    }
    const QString scheme = QStringLiteral("http://");
    if (!origin.startsWith(scheme)) {
        return false;
    }
    const std::optional<Authority> authority = parse(origin.mid(scheme.size()));
    if (!authority || authority->port != httpPort) {
        return false;
    }
    return authority->address.isNull() ? isOwnName(authority->name, machineName)
                                       : isOwnAddress(authority->address);
}

bool WebPages::isHiddenPage(const QString& origin, const QString& userAgent)
{
    // So begins every browser's, for the sake of sites that know the first one only.
    return origin == QLatin1String("null") && userAgent.startsWith(QLatin1String("Mozilla/"));
}
