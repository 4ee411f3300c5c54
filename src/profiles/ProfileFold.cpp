// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/ProfileFold.h"

#include "storage/DSqlQuery.h"
#include "storage/HistoryStamp.h"
#include "storage/SettingsKeys.h"

#include <algorithm>
#include <optional>

namespace {

using ProfileFold::Result;

ProfileFold::Table table(const QString& name, const QString& keys, const QString& values)
{
    return {name, keys.split(QLatin1Char(' ')), values.split(QLatin1Char(' '))};
}

/// A few hundredths of a second's work, and at most this many pieces a table, however far its row
/// numbers reach.
constexpr quint64 RowsPerPiece = 25'000;
constexpr quint64 MostPieces = 10'000;

/// What remains for the commit.
constexpr double FoldedPercent = 95;

/// The row numbers of a table.
struct Span
{
    qint64 first = 0;
    qint64 last = -1; ///< Below the first one where the table is empty.

    quint64 size() const
    {
        return last < first ? 0 : static_cast<quint64>(last) - static_cast<quint64>(first) + 1;
    }
};

std::optional<Span> spanOf(const QSqlDatabase& connection, const QString& table)
{
    // Two selects: SQLite finds one end of a table at once, and both together by reading it whole.
    DSqlQuery query(connection);
    if (!query.exec(QStringLiteral("SELECT (SELECT MIN(rowid) FROM %1), (SELECT MAX(rowid) FROM "
                                   "%1)")
                        .arg(table)) ||
        !query.next()) {
        return std::nullopt;
    }
    return query.isNull(0) ? Span()
                           : Span{query.value(0).toLongLong(), query.value(1).toLongLong()};
}

/// Rows whose key the default profile does not have change hands as they are. That is nearly all of
/// them, and for these nothing is looked up and no row is written anew.
QString moveStatement(const ProfileFold::Table& table)
{
    return QStringLiteral("UPDATE OR IGNORE %1 SET profile_id = 0 WHERE profile_id = ? AND rowid "
                          "BETWEEN ? AND ?")
        .arg(table.name);
}

/// The remaining rows take up the default profile's values and replace its rows.
QString mergeStatement(const ProfileFold::Table& table)
{
    QStringList sameKey;
    for (const QString& key : table.keys) {
        sameKey += QStringLiteral("%1 = k.%1").arg(key);
    }
    QStringList sums;
    for (const QString& value : table.values) {
        sums += QStringLiteral("%1 = k.%1 + (SELECT %1 FROM %2 WHERE %3 AND profile_id = 0)")
                    .arg(value, table.name, sameKey.join(QStringLiteral(" AND ")));
    }
    return QStringLiteral("UPDATE OR REPLACE %1 AS k SET profile_id = 0, %2 WHERE profile_id = ? "
                          "AND rowid BETWEEN ? AND ?")
        .arg(table.name, sums.join(QStringLiteral(", ")));
}

bool execFor(DSqlQuery& query, int profileId, const Span& piece)
{
    query.bindValue(0, profileId);
    query.bindValue(1, piece.first);
    query.bindValue(2, piece.last);
    return query.exec();
}

/// The fold of one profile, table by table and piece by piece.
class Fold
{
public:
    Fold(const QSqlDatabase& connection, int profileId, const ProfileFold::Watch& watch)
        : m_connection(connection)
        , m_profileId(profileId)
        , m_watch(watch)
    {
    }

    Result run()
    {
        if (!measure()) {
            return Result::Failed;
        }
        for (qsizetype i = 0; i < m_spans.size(); ++i) {
            const Result result = foldTable(ProfileFold::tables().at(i), m_spans.at(i));
            if (result != Result::Deleted) {
                return result;
            }
        }
        return deleteRow() ? Result::Deleted : Result::Failed;
    }

private:
    bool measure()
    {
        return std::ranges::all_of(ProfileFold::tables(), [this](const ProfileFold::Table& table) {
            const std::optional<Span> span = spanOf(m_connection, table.name);
            if (span) {
                m_spans.append(*span);
                m_total += static_cast<double>(span->size());
            }
            return span.has_value();
        });
    }

    Result foldTable(const ProfileFold::Table& table, const Span& span)
    {
        DSqlQuery move(m_connection);
        DSqlQuery merge(m_connection);
        if (!move.prepare(moveStatement(table)) || !merge.prepare(mergeStatement(table))) {
            return Result::Failed;
        }
        const quint64 step = std::max(RowsPerPiece, span.size() / MostPieces + 1);
        for (quint64 done = 0; done < span.size(); done += step) {
            const quint64 rows = std::min(step, span.size() - done);
            const auto first = static_cast<qint64>(static_cast<quint64>(span.first) + done);
            const Span piece{first, static_cast<qint64>(static_cast<quint64>(first) + rows - 1)};
            // Both while the rows are at hand. A row can meet one of the default profile only, so
            // that the order of the pieces makes no difference.
            if (!execFor(move, m_profileId, piece) || !execFor(merge, m_profileId, piece)) {
                return Result::Failed;
            }
            m_done += static_cast<double>(rows);
            if (!m_watch(static_cast<int>(FoldedPercent * m_done / m_total))) {
                return Result::Cancelled;
            }
        }
        return Result::Deleted;
    }

    /// The profile goes last, so that its rows are nobody's at no time.
    bool deleteRow()
    {
        DSqlQuery changed(m_connection);
        DSqlQuery query(m_connection);
        return HistoryStamp::renew(m_connection) &&
               changed.prepare(
                   QStringLiteral("REPLACE INTO settings (\"value\", \"name\") VALUES (?, ?)")) &&
               bindAndRun(changed, true, SettingsKeys::ProfilesHaveChanged.name()) &&
               query.prepare(QStringLiteral("DELETE FROM profiles WHERE id = ?")) &&
               bindAndRun(query, m_profileId) && query.numRowsAffected() > 0;
    }

    template <typename... Values>
    static bool bindAndRun(DSqlQuery& query, const Values&... values)
    {
        (query.addBindValue(values), ...);
        return query.exec();
    }

    QSqlDatabase m_connection;
    int m_profileId;
    const ProfileFold::Watch& m_watch;
    QList<Span> m_spans;
    double m_total = 0; ///< Rows of all tables.
    double m_done = 0;
};

} // namespace

const QList<ProfileFold::Table>& ProfileFold::tables()
{
    static const QList<Table> all = [] {
        const QString day = QStringLiteral("day hour");
        const QString count = QStringLiteral("count");
        return QList<Table>{
            table(QStringLiteral("keypresses"), day, count),
            table(QStringLiteral("keypress_frequency"), day + QStringLiteral(" key"), count),
            table(QStringLiteral("keypress_frequency_application"),
                  day + QStringLiteral(" key path"), count),
            table(QStringLiteral("keycombo_frequency"), day + QStringLiteral(" combo"), count),
            table(QStringLiteral("keycombo_frequency_application"),
                  day + QStringLiteral(" combo path"), count),
            table(QStringLiteral("mouseclicks"), day, count),
            table(QStringLiteral("mouseclicks_frequency"), day + QStringLiteral(" button"), count),
            table(QStringLiteral("mouseclicks_frequency_application"),
                  day + QStringLiteral(" button path"), count),
            table(QStringLiteral("mousedistance"), day, QStringLiteral("distance_inches")),
            table(QStringLiteral("mousescrolls"), day + QStringLiteral(" direction"), count),
            table(QStringLiteral("uptime_hour"), day, QStringLiteral("msec_active")),
            table(QStringLiteral("application_active_hour"), day + QStringLiteral(" path"),
                  QStringLiteral("seconds_active")),
            table(QStringLiteral("application_uptime"), QStringLiteral("path"),
                  QStringLiteral("time")),
            table(QStringLiteral("network_protocol_bandwidth"),
                  day + QStringLiteral(" protocol port_number"), QStringLiteral("download upload")),
            table(QStringLiteral("input_per_application"), day + QStringLiteral(" path"),
                  QStringLiteral("keys clicks distance_inches scrolls")),
        };
    }();
    return all;
}

Result ProfileFold::deleteProfile(const QSqlDatabase& connection, int profileId, const Watch& watch)
{
    DSqlQuery transaction(connection);
    // For writing from the start: to become a writer later can fail where another one was faster.
    if (!transaction.exec(QStringLiteral("BEGIN IMMEDIATE"))) {
        return Result::Failed;
    }
    Result result = Fold(connection, profileId, watch).run();
    if (result == Result::Deleted && transaction.exec(QStringLiteral("COMMIT"))) {
        watch(100);
        return result;
    }
    if (result == Result::Deleted) {
        result = watch(static_cast<int>(FoldedPercent)) ? Result::Failed : Result::Cancelled;
    }
    transaction.exec(QStringLiteral("ROLLBACK"));
    return result;
}
