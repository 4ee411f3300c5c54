// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/CountTable.h"

#include "ui/history/HistoryTypes.h"
#include "ui/history/RowReader.h"

namespace {

QString countType()
{
    return QStringLiteral("count INTEGER");
}

/// The counts of `table` by its column `thing`.
QString countsBy(const QString& thing, const QString& table)
{
    return RowReader::scoped(
        QStringLiteral("SELECT \"day\", \"profile_id\", %1, SUM(\"count\") FROM %2")
            .arg(thing, table),
        QStringLiteral("GROUP BY \"day\", \"profile_id\", %1 HAVING SUM(\"count\")<>0").arg(thing));
}

/// CAST cuts towards zero: one less where that is not below the value.
QString cells()
{
    return RowReader::scoped(
        QStringLiteral("SELECT \"day\", \"profile_id\", "
                       "CAST(\"x\" AS INTEGER) - (CAST(\"x\" AS INTEGER)>\"x\") AS \"column\", "
                       "CAST(\"y\" AS INTEGER) - (CAST(\"y\" AS INTEGER)>\"y\") AS \"row\", "
                       "COUNT(*) FROM (SELECT \"day\", \"profile_id\", \"x\"*%1 AS \"x\", "
                       "\"y\"*%2 AS \"y\" FROM mousepoints)")
            .arg(ClickCell::Columns)
            .arg(ClickCell::Rows),
        QStringLiteral("GROUP BY 1, 2, 3, 4"));
}

/// No path stands for what was counted while no application was in front.
QString applications()
{
    return RowReader::scoped(
        QStringLiteral("SELECT \"day\", \"profile_id\", \"path\", SUM(\"keys\"), SUM(\"clicks\"), "
                       "SUM(\"scrolls\"), SUM(\"distance_inches\"), SUM(\"front_seconds\") FROM ("
                       "SELECT \"day\", \"profile_id\", \"path\", \"keys\", \"clicks\", "
                       "\"scrolls\", \"distance_inches\", 0 AS \"front_seconds\" "
                       "FROM input_per_application UNION ALL "
                       "SELECT \"day\", \"profile_id\", \"path\", 0, 0, 0, 0, \"seconds_active\" "
                       "FROM application_active_hour)"),
        QStringLiteral("AND \"path\"<>'' GROUP BY \"day\", \"profile_id\", \"path\""));
}

CountTableText keyText()
{
    return {.name = QStringLiteral("key"),
            .things = {QStringLiteral("key INTEGER")},
            .values = {countType()},
            .hourly = countsBy(QStringLiteral("\"key\""), QStringLiteral("keypress_frequency"))};
}

CountTableText combinationText()
{
    return {.name = QStringLiteral("combination"),
            .things = {QStringLiteral("combination TEXT")},
            .values = {countType()},
            .hourly = countsBy(QStringLiteral("\"combo\""), QStringLiteral("keycombo_frequency"))};
}

CountTableText scrollText()
{
    return {.name = QStringLiteral("scroll"),
            .things = {QStringLiteral("direction INTEGER")},
            .values = {countType()},
            .hourly = countsBy(QStringLiteral("\"direction\""), QStringLiteral("mousescrolls"))};
}

CountTableText cellText()
{
    return {.name = QStringLiteral("cell"),
            .things = {QStringLiteral("x INTEGER"), QStringLiteral("y INTEGER")},
            .values = {countType()},
            .hourly = cells()};
}

CountTableText applicationText()
{
    return {.name = QStringLiteral("application"),
            .things = {QStringLiteral("path TEXT")},
            .values = {QStringLiteral("keys INTEGER"), QStringLiteral("clicks INTEGER"),
                       QStringLiteral("scrolls INTEGER"), QStringLiteral("inches REAL"),
                       QStringLiteral("front_seconds INTEGER")},
            .hourly = applications()};
}

/// The traffic of `table` by its columns `things`.
QString trafficBy(const QString& things, const QString& table)
{
    return RowReader::scoped(
        QStringLiteral("SELECT \"day\", \"profile_id\", %1, SUM(\"download\"), SUM(\"upload\") "
                       "FROM %2")
            .arg(things, table),
        QStringLiteral("GROUP BY \"day\", \"profile_id\", %1 "
                       "HAVING SUM(\"download\")+SUM(\"upload\")<>0")
            .arg(things));
}

QStringList trafficTypes()
{
    return {QStringLiteral("download INTEGER"), QStringLiteral("upload INTEGER")};
}

CountTableText interfaceText()
{
    return {.name = QStringLiteral("interface"),
            .things = {QStringLiteral("mac_address TEXT")},
            .values = trafficTypes(),
            .hourly = trafficBy(QStringLiteral("\"mac_address\""),
                                QStringLiteral("(SELECT *, 0 AS \"profile_id\" "
                                               "FROM network_interface_bandwidth)"))};
}

CountTableText applicationTrafficText()
{
    return {.name = QStringLiteral("application_traffic"),
            .things = {QStringLiteral("path TEXT")},
            .values = trafficTypes(),
            .hourly =
                trafficBy(QStringLiteral("\"path\""), QStringLiteral("application_bandwidth"))};
}

CountTableText countryText()
{
    return {.name = QStringLiteral("country"),
            .things = {QStringLiteral("country TEXT")},
            .values = trafficTypes(),
            .hourly =
                trafficBy(QStringLiteral("\"country\""), QStringLiteral("country_bandwidth"))};
}

CountTableText serviceText()
{
    return {.name = QStringLiteral("service"),
            .things = {QStringLiteral("port INTEGER"), QStringLiteral("transport TEXT")},
            .values = trafficTypes(),
            .hourly = trafficBy(QStringLiteral("\"port_number\", \"protocol\""),
                                QStringLiteral("network_protocol_bandwidth"))};
}

} // namespace

const CountTableText& CountTableTexts::of(CountTable table)
{
    // In the order of `CountTable`.
    static const std::array texts{
        keyText(),       combinationText(),        scrollText(),  cellText(),   applicationText(),
        interfaceText(), applicationTrafficText(), countryText(), serviceText()};
    return texts.at(static_cast<size_t>(table));
}

QString CountTableTexts::names(const QStringList& columns)
{
    QStringList names;
    for (const QString& column : columns) {
        names += column.section(QLatin1Char(' '), 0, 0);
    }
    return names.join(QStringLiteral(", "));
}
