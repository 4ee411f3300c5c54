// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/InternetAvailability.h"

#include <QNetworkInformation>
#include <QNetworkInterface>

#include <algorithm>

namespace {

bool isUsable(const QNetworkInterface& interface)
{
    const auto flags = interface.flags();
    return flags.testFlag(QNetworkInterface::IsUp) &&
           flags.testFlag(QNetworkInterface::IsRunning) &&
           !flags.testFlag(QNetworkInterface::IsLoopBack) && !interface.addressEntries().isEmpty();
}

} // namespace

bool InternetAvailability::isAvailable()
{
    using Reachability = QNetworkInformation::Reachability;
    if (!m_backendTried) {
        m_backendTried = true;
        QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability);
    }
    const QNetworkInformation* information = QNetworkInformation::instance();
    const Reachability reachability =
        information ? information->reachability() : Reachability::Unknown;
    if (reachability == Reachability::Unknown) {
        const auto interfaces = QNetworkInterface::allInterfaces();
        return std::any_of(interfaces.begin(), interfaces.end(), isUsable);
    }
    // "Site" is what a service answers whose own probe was blocked, as many offices do while a
    // proxy works. A wrong yes costs one failed request, a wrong no keeps the counts from ever
    // being sent.
    return reachability == Reachability::Site || reachability == Reachability::Online;
}
