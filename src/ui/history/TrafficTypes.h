// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>

/// What `History` answers with about the network. Plain values.

/// Bytes that crossed the network over some time.
struct TrafficTotals
{
    qint64 download = 0;
    qint64 upload = 0;

    qint64 sum() const { return download + upload; }

    TrafficTotals& operator+=(const TrafficTotals& other)
    {
        download += other.download;
        upload += other.upload;
        return *this;
    }

    friend bool operator==(const TrafficTotals&, const TrafficTotals&) = default;
};

struct TrafficDay
{
    QDate day;
    TrafficTotals traffic;
    friend bool operator==(const TrafficDay&, const TrafficDay&) = default;
};

struct TrafficHour
{
    int hour = 0; ///< Local, 0 to 23.
    TrafficTotals traffic;
    friend bool operator==(const TrafficHour&, const TrafficHour&) = default;
};

/// One network interface of this machine, be it still there or not.
struct InterfaceTotals
{
    QString macAddress;
    QString description; ///< Empty where nothing is known of it.
    bool isWifi = false;
    QString addresses;  ///< Those it had last, joined by commas.
    QDateTime lastSeen; ///< Local; invalid where unknown.
    TrafficTotals traffic;
    friend bool operator==(const InterfaceTotals&, const InterfaceTotals&) = default;
};

struct ApplicationTraffic
{
    QString path;
    QString name; ///< From the table of known applications; empty where it is not in there.
    TrafficTotals traffic;
    friend bool operator==(const ApplicationTraffic&, const ApplicationTraffic&) = default;
};

struct CountryTraffic
{
    QString country; ///< ISO 3166-1, two letters, or what `CountryDatabase` files others under.
    TrafficTotals traffic;
    friend bool operator==(const CountryTraffic&, const CountryTraffic&) = default;
};

/// A port of the other end, which tells what service was used.
struct ServiceTraffic
{
    int port = 0;
    QString transport; ///< "TCP", "UDP" or "Other".
    TrafficTotals traffic;
    friend bool operator==(const ServiceTraffic&, const ServiceTraffic&) = default;
};
