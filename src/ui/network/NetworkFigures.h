// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/History.h"

/// What the network view shows of some days. Plain value.
struct NetworkFigures
{
    QDate first; ///< Of the days shown; null where there are none.
    QDate last;
    bool isOneDay = false;
    QList<TrafficDay> days;
    QList<TrafficHour> hours; ///< Where one day was asked for.
    QList<InterfaceTotals> interfaces;
    QHash<QString, InterfaceFacts> known; ///< By MAC address.
    QList<ApplicationTraffic> applications;
    QList<CountryTraffic> countries;
    QList<ServiceTraffic> services;

    /// Nothing where something could not be read. Thread: the query worker's.
    static std::optional<NetworkFigures> read(History& history, const HistoryScope& scope);

    bool isEmpty() const;

    /// Over all days.
    TrafficTotals sum() const;
};
