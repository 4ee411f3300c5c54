// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/MilestoneTotals.h"

#include "storage/DSqlQuery.h"

#include <algorithm>
#include <array>

namespace {

struct Total
{
    QString type;
    QString query;
};

const std::array<Total, 5>& totals()
{
    static const std::array all{
        Total{QStringLiteral("Keys"), QStringLiteral("SELECT SUM(count) FROM keypresses")},
        Total{QStringLiteral("Clicks"), QStringLiteral("SELECT SUM(count) FROM mouseclicks")},
        Total{QStringLiteral("Downloaded MB"),
              QStringLiteral("SELECT (SUM(download) / 1024 / 1024) FROM "
                             "network_interface_bandwidth")},
        Total{QStringLiteral("Uploaded MB"),
              QStringLiteral("SELECT (SUM(upload) / 1024 / 1024) FROM "
                             "network_interface_bandwidth")},
        Total{QStringLiteral("Uptime in Minutes"),
              QStringLiteral("SELECT (SUM(strftime('%s',end_time)-strftime('%s',boot_time)) / 60) "
                             "FROM uptimes")},
    };
    return all;
}

const Total* find(const QString& type)
{
    const auto found = std::find_if(totals().begin(), totals().end(),
                                    [&type](const Total& total) { return total.type == type; });
    return found == totals().end() ? nullptr : &*found;
}

} // namespace

MilestoneTotals::MilestoneTotals(Database* database)
    : m_database(database)
{
}

QStringList MilestoneTotals::types()
{
    QStringList types;
    for (const Total& total : totals()) {
        types += total.type;
    }
    return types;
}

bool MilestoneTotals::isKnown(const QString& type)
{
    return find(type) != nullptr;
}

std::optional<qint64> MilestoneTotals::current(const QString& type)
{
    const auto asked = m_totals.constFind(type);
    if (asked != m_totals.constEnd()) {
        return *asked;
    }
    const Total* total = find(type);
    Q_ASSERT(total);
    DSqlQuery query(m_database);
    // The sum of no rows is NULL, which reads as 0.
    const bool found = query.exec(total->query) && query.next();
    const std::optional<qint64> value =
        found ? std::optional(query.value(0).toLongLong()) : std::nullopt;
    m_totals.insert(type, value);
    return value;
}
