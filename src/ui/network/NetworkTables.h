// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Utils.h"
#include "ui/network/NetworkFigures.h"
#include "ui/network/TrafficModel.h"

/// The tables of the network view: their columns, and figures as rows. Thread: main.
namespace NetworkTables {

/// Finds the name to show.
using NameOf = std::function<QString(const ApplicationTraffic& application)>;

/// Finds what a port is for; empty where that is not known.
using PortDescription = std::function<QString(int port, Utils::TrafficType type)>;

QList<TrafficModel::Column> interfaceColumns();
QList<TrafficModel::Column> applicationColumns();
QList<TrafficModel::Column> countryColumns();
QList<TrafficModel::Column> serviceColumns();

/// Of `interfaceColumns` and the others, the one with the bytes to sort by.
constexpr int InterfaceDownload = 5;
constexpr int NamedDownload = 1;
constexpr int ServiceDownload = 3;

QList<TrafficModel::Row> interfaces(const QList<InterfaceTotals>& interfaces);
QList<TrafficModel::Row> applications(const QList<ApplicationTraffic>& applications,
                                      const NameOf& nameOf);
QList<TrafficModel::Row> countries(const QList<CountryTraffic>& countries);
QList<TrafficModel::Row> services(const QList<ServiceTraffic>& services,
                                  const PortDescription& describe);

/// The key that interfaces are told apart by: addresses were stored in lower case, too.
QString interfaceKey(const QString& macAddress);

} // namespace NetworkTables
