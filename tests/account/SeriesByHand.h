// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <sqlite3.h>

#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <string>

/// The time series of a database file, worked out a second time: the rows are read as they are
/// stored, through SQLite's own interface, and everything is added up here.
class SeriesByHand
{
public:
    using Entry = std::map<QString, double>;
    using Series = std::map<QString, Entry>;

    SeriesByHand(const QString& file, const QDate& from, const QDate& to)
        : m_from(from.toString(Qt::ISODate).toStdString())
        , m_to(to.toString(Qt::ISODate).toStdString())
    {
        sqlite3_open_v2(file.toUtf8().constData(), &m_database, SQLITE_OPEN_READONLY, nullptr);
    }

    ~SeriesByHand() { sqlite3_close(m_database); }

    SeriesByHand(const SeriesByHand&) = delete;
    SeriesByHand& operator=(const SeriesByHand&) = delete;

    Series totalsAndProfiles()
    {
        m_series.clear();
        perProfile("count", "keypresses", "keys", 1);
        perProfile("count", "mouseclicks", "clicks", 1);
        perProfile("count", "mousescrolls", "scrolls", 1);
        perProfile("distance_inches", "mousedistance", "distance_inches", 0);
        perProfile("msec_active", "uptime_hour", "uptime", 1000);
        for (const char* direction : {"download", "upload"}) {
            forEach(direction, "network_interface_bandwidth", "mac_address", [&](const Row& row) {
                entry(row, QStringLiteral("totals"))[QLatin1String(direction)] +=
                    mebibytes(row.value);
            });
        }
        return m_series;
    }

    /// And the applications with an online id.
    Series everything()
    {
        totalsAndProfiles();
        perApplication("seconds_active", "application_active_hour", "uptime");
        for (const char* counter : {"keys", "clicks", "scrolls", "distance_inches"}) {
            perApplication(counter, "input_per_application", counter);
        }
        for (const char* direction : {"download", "upload"}) {
            perApplication(direction, "application_bandwidth", direction);
        }
        return m_series;
    }

    /// What differs first; empty where nothing does.
    static QString difference(const Series& expected, const QMap<QString, QVariant>& series)
    {
        for (const auto& [key, counters] : expected) {
            const QVariantMap given = series.value(key).toMap();
            for (const auto& [name, value] : counters) {
                if (!given.contains(name) ||
                    std::abs(given.value(name).toDouble() - value) > 1e-6) {
                    return QStringLiteral("%1 %2: %3, not %4")
                        .arg(key, name, given.value(name).toString())
                        .arg(value, 0, 'g', 17);
                }
            }
            if (given.size() != static_cast<qsizetype>(counters.size())) {
                return key + QStringLiteral(" has further counters");
            }
        }
        return series.size() == static_cast<qsizetype>(expected.size())
                   ? QString()
                   : QStringLiteral("there are further entries");
    }

private:
    struct Row
    {
        QString hour; ///< "day_hour".
        QString owner;
        double value = 0;
    };

    static double mebibytes(double bytes)
    {
        const double whole = bytes > 1048576 ? std::floor(bytes / 1048576) : 0;
        return whole > 1e9 ? 0 : whole;
    }

    Entry& entry(const Row& row, const QString& subject)
    {
        return m_series[row.hour + QLatin1Char('_') + subject];
    }

    void forEach(const char* column, const char* table, const char* owner,
                 const std::function<void(const Row&)>& use)
    {
        const std::string sql = std::string("SELECT day, hour, ") + owner + ", " + column +
                                " FROM " + table + " WHERE day BETWEEN ? AND ?";
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(m_database, sql.c_str(), -1, &statement, nullptr);
        sqlite3_bind_text(statement, 1, m_from.c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_text(statement, 2, m_to.c_str(), -1, SQLITE_STATIC);
        const auto text = [&](int index) {
            return QString::fromUtf8(
                reinterpret_cast<const char*>(sqlite3_column_text(statement, index)));
        };
        while (sqlite3_step(statement) == SQLITE_ROW) {
            use({text(0) + QLatin1Char('_') + text(1), text(2),
                 sqlite3_column_double(statement, 3)});
        }
        sqlite3_finalize(statement);
    }

    /// The computer's sum and, of each profile but the default one, its own. `unit`: what makes one
    /// in the series; 0 for amounts that stay as they are.
    void perProfile(const char* column, const char* table, const char* counter, int unit)
    {
        const auto inUnits = [unit](double value) {
            return unit > 0 ? std::floor(value / unit) : value;
        };
        const QLatin1String name(counter);
        std::map<QString, double> sums;
        std::map<std::pair<QString, QString>, double> ofProfiles;
        forEach(column, table, "profile_id", [&](const Row& row) {
            sums[row.hour] += row.value;
            if (row.owner != QLatin1String("0")) {
                ofProfiles[{row.hour, row.owner}] += row.value;
            }
        });
        for (const auto& [hour, value] : sums) {
            entry({hour, {}, 0}, QStringLiteral("totals"))[name] = inUnits(value);
        }
        for (const auto& [key, value] : ofProfiles) {
            entry({key.first, {}, 0}, QStringLiteral("profile-") + key.second)[name] =
                inUnits(value);
        }
    }

    void perApplication(const char* column, const char* table, const char* counter)
    {
        const bool bytes = QByteArrayView(table) == "application_bandwidth";
        std::map<std::pair<QString, QString>, double> ofPaths;
        const std::string known = std::string(table) + " JOIN applications USING (path)";
        forEach(column, known.c_str(), "online_app_id || ' ' || path", [&](const Row& row) {
            ofPaths[{row.hour, row.owner}] += row.value;
        });
        for (const auto& [key, value] : ofPaths) {
            const QString id = key.second.section(QLatin1Char(' '), 0, 0);
            if (id.toLongLong() > 0) {
                entry({key.first, {}, 0}, id)[QLatin1String(counter)] +=
                    bytes ? mebibytes(value) : value;
            }
        }
    }

    sqlite3* m_database = nullptr;
    std::string m_from;
    std::string m_to;
    Series m_series;
};
