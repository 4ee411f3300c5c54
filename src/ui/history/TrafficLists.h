// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistorySums.h"
#include "ui/history/KnownInterfaces.h"

#include <QList>

/// Sums of traffic as the lists that `History` answers with, without entries of zero and in their
/// order.
namespace TrafficLists {

QList<TrafficDay> days(const TrafficGroupSums& sums);
QList<TrafficHour> hours(const TrafficGroupSums& sums);
QList<InterfaceTotals> interfaces(const TrafficSums& sums,
                                  const QHash<QString, InterfaceFacts>& known);
QList<ApplicationTraffic> applications(const TrafficSums& sums,
                                       const QHash<QString, QString>& names);
QList<CountryTraffic> countries(const TrafficSums& sums);
QList<ServiceTraffic> services(const ServiceSums& sums);

} // namespace TrafficLists
