// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/TrafficLists.h"

#include <algorithm>

namespace {

const TrafficTotals Nothing;

/// The largest sums first; equal ones in the order of what `thing` makes of them.
template <typename Entry, typename Thing>
void sortBySum(QList<Entry>& entries, Thing thing)
{
    std::ranges::sort(entries, [thing](const Entry& left, const Entry& right) {
        const qint64 more = left.traffic.sum() - right.traffic.sum();
        return more != 0 ? more > 0 : thing(left) < thing(right);
    });
}

/// Of each sum that is not zero, what `make` makes of it.
template <typename Entry, typename Sums, typename Make>
QList<Entry> list(const Sums& sums, Make make)
{
    QList<Entry> entries;
    for (auto it = sums.cbegin(); it != sums.cend(); ++it) {
        if (it.value() != Nothing) {
            entries.append(make(it.key(), it.value()));
        }
    }
    return entries;
}

} // namespace

QList<TrafficDay> TrafficLists::days(const TrafficGroupSums& sums)
{
    QList<TrafficDay> days;
    for (const auto& [julianDay, traffic] : sums) {
        if (traffic != Nothing) {
            days.append({.day = QDate::fromJulianDay(julianDay), .traffic = traffic});
        }
    }
    return days;
}

QList<TrafficHour> TrafficLists::hours(const TrafficGroupSums& sums)
{
    QList<TrafficHour> hours;
    for (const auto& [hour, traffic] : sums) {
        if (traffic != Nothing) {
            hours.append({.hour = static_cast<int>(hour), .traffic = traffic});
        }
    }
    return hours;
}

QList<InterfaceTotals> TrafficLists::interfaces(const TrafficSums& sums,
                                                const QHash<QString, InterfaceFacts>& known)
{
    auto interfaces = list<InterfaceTotals>(
        sums, [&known](const QString& macAddress, const TrafficTotals& traffic) {
            const InterfaceFacts facts = known.value(macAddress);
            return InterfaceTotals{.macAddress = macAddress,
                                   .description = facts.description,
                                   .isWifi = facts.isWifi,
                                   .addresses = facts.addresses,
                                   .lastSeen = facts.lastSeen,
                                   .traffic = traffic};
        });
    sortBySum(interfaces, [](const InterfaceTotals& entry) { return entry.macAddress; });
    return interfaces;
}

QList<ApplicationTraffic> TrafficLists::applications(const TrafficSums& sums,
                                                     const QHash<QString, QString>& names)
{
    auto applications =
        list<ApplicationTraffic>(sums, [&names](const QString& path, const TrafficTotals& traffic) {
            return ApplicationTraffic{.path = path, .name = names.value(path), .traffic = traffic};
        });
    sortBySum(applications, [](const ApplicationTraffic& entry) { return entry.path; });
    return applications;
}

QList<CountryTraffic> TrafficLists::countries(const TrafficSums& sums)
{
    auto countries =
        list<CountryTraffic>(sums, [](const QString& country, const TrafficTotals& traffic) {
            return CountryTraffic{.country = country, .traffic = traffic};
        });
    sortBySum(countries, [](const CountryTraffic& entry) { return entry.country; });
    return countries;
}

QList<ServiceTraffic> TrafficLists::services(const ServiceSums& sums)
{
    auto services = list<ServiceTraffic>(
        sums, [](const std::pair<int, QString>& service, const TrafficTotals& traffic) {
            return ServiceTraffic{
                .port = service.first, .transport = service.second, .traffic = traffic};
        });
    sortBySum(services,
              [](const ServiceTraffic& entry) { return std::pair(entry.port, entry.transport); });
    return services;
}
