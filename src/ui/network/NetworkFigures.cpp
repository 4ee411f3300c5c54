// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/network/NetworkFigures.h"

std::optional<NetworkFigures> NetworkFigures::read(History& history, const HistoryScope& scope)
{
    const auto days = history.trafficDays(scope);
    const auto hours = scope.isOneDay() ? history.trafficHours(scope) : QList<TrafficHour>();
    const auto interfaces = history.interfaces(scope);
    const auto known = history.knownInterfaces();
    const auto applications = history.applicationTraffic(scope);
    const auto countries = history.countries(scope);
    const auto services = history.services(scope);
    if (!days || !hours || !interfaces || !known || !applications || !countries || !services) {
        return std::nullopt;
    }
    const bool isFromFirst = scope.first.isNull() && !days->isEmpty();
    return NetworkFigures{.first = isFromFirst ? days->constFirst().day : scope.first,
                          .last = scope.last,
                          .isOneDay = scope.isOneDay(),
                          .days = *days,
                          .hours = *hours,
                          .interfaces = *interfaces,
                          .known = *known,
                          .applications = *applications,
                          .countries = *countries,
                          .services = *services};
}

bool NetworkFigures::isEmpty() const
{
    return interfaces.isEmpty() && applications.isEmpty() && countries.isEmpty() &&
           services.isEmpty();
}

TrafficTotals NetworkFigures::sum() const
{
    TrafficTotals sum;
    for (const TrafficDay& day : days) {
        sum += day.traffic;
    }
    return sum;
}
