// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/network/NetworkTables.h"

#include "ui/network/CountryNames.h"

#include <QCoreApplication>
#include <QLocale>

namespace {

using Kind = TrafficModel::Kind;

/// Gives the context of the translations.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(NetworkTables)
};

TrafficModel::Column download()
{
    return {.header = Text::tr("Download"), .kind = Kind::Bytes};
}

TrafficModel::Column upload()
{
    return {.header = Text::tr("Upload"), .kind = Kind::Bytes};
}

TrafficModel::Column share()
{
    return {.header = Text::tr("Share"), .kind = Kind::Share};
}

template <typename Entry>
double sumOf(const QList<Entry>& entries)
{
    double sum = 0;
    for (const Entry& entry : entries) {
        sum += static_cast<double>(entry.traffic.sum());
    }
    return sum;
}

/// Both directions, and their share of `sum`.
QVariantList bytesCells(const TrafficTotals& traffic, double sum)
{
    return {traffic.download, traffic.upload, static_cast<double>(traffic.sum()) / sum};
}

Utils::TrafficType typeOf(const QString& transport)
{
    if (transport.compare(QLatin1String("TCP"), Qt::CaseInsensitive) == 0) {
        return Utils::TrafficType::Tcp;
    }
    return transport.compare(QLatin1String("UDP"), Qt::CaseInsensitive) == 0
               ? Utils::TrafficType::Udp
               : Utils::TrafficType::Other;
}

} // namespace

QList<TrafficModel::Column> NetworkTables::interfaceColumns()
{
    return {{.header = Text::tr("Interface")},
            {.header = Text::tr("Hardware address")},
            {.header = Text::tr("Kind")},
            {.header = Text::tr("Addresses"), .kind = Kind::LongText},
            {.header = Text::tr("Last seen"), .kind = Kind::Time},
            download(),
            upload()};
}

QList<TrafficModel::Column> NetworkTables::applicationColumns()
{
    return {{.header = Text::tr("Application")}, download(), upload(), share()};
}

QList<TrafficModel::Column> NetworkTables::countryColumns()
{
    return {{.header = Text::tr("Country")}, download(), upload(), share()};
}

QList<TrafficModel::Column> NetworkTables::serviceColumns()
{
    return {{.header = Text::tr("Service")},
            {.header = Text::tr("Port"), .kind = Kind::Number},
            {.header = Text::tr("Transport")},
            download(),
            upload()};
}

QList<TrafficModel::Row> NetworkTables::interfaces(const QList<InterfaceTotals>& interfaces)
{
    QList<TrafficModel::Row> rows;
    for (const InterfaceTotals& one : interfaces) {
        rows.append(
            {.key = interfaceKey(one.macAddress),
             .cells = {one.description.isEmpty() ? one.macAddress : one.description, one.macAddress,
                       one.isWifi ? Text::tr("Wi-Fi") : Text::tr("Wired"), one.addresses,
                       one.lastSeen, one.traffic.download, one.traffic.upload},
             .toolTip = {}});
    }
    return rows;
}

QList<TrafficModel::Row> NetworkTables::applications(const QList<ApplicationTraffic>& applications,
                                                     const NameOf& nameOf)
{
    const double sum = sumOf(applications);
    QList<TrafficModel::Row> rows;
    for (const ApplicationTraffic& one : applications) {
        rows.append({.key = one.path,
                     .cells = QVariantList{nameOf(one)} + bytesCells(one.traffic, sum),
                     .toolTip = one.path});
    }
    return rows;
}

QList<TrafficModel::Row> NetworkTables::countries(const QList<CountryTraffic>& countries)
{
    const double sum = sumOf(countries);
    QList<TrafficModel::Row> rows;
    for (const CountryTraffic& one : countries) {
        rows.append({.key = one.country,
                     .cells = QVariantList{countryName(one.country)} + bytesCells(one.traffic, sum),
                     .toolTip = {}});
    }
    return rows;
}

QList<TrafficModel::Row> NetworkTables::services(const QList<ServiceTraffic>& services,
                                                 const PortDescription& describe)
{
    QList<TrafficModel::Row> rows;
    for (const ServiceTraffic& one : services) {
        const QString known = describe ? describe(one.port, typeOf(one.transport)) : QString();
        rows.append({.key = QStringLiteral("%1/%2").arg(one.transport).arg(one.port),
                     .cells = {known.isEmpty() ? Text::tr("Unknown service") : known, one.port,
                               one.transport, one.traffic.download, one.traffic.upload},
                     .toolTip = {}});
    }
    return rows;
}

QString NetworkTables::interfaceKey(const QString& macAddress)
{
    return macAddress.toUpper();
}
