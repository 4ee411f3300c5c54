// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Format.h"
#include "storage/DSqlQuery.h"
#include "ui/history/HistoryScope.h"

#include <QSqlError>

/// Reads rows.
namespace RowReader {

/// Runs `statement` with what `bind` binds to it, and hands each row to `take`. False where it
/// failed, be it after some rows.
template <typename Bind, typename Take>
bool forEachRow(const QSqlDatabase& connection, const QString& statement, Bind bind, Take take)
{
    DSqlQuery query(connection);
    query.setForwardOnly(true);
    if (!query.prepare(statement)) {
        return false;
    }
    bind(query);
    if (!query.exec()) {
        return false;
    }
    while (query.next()) {
        take(query);
    }
    return !query.lastError().isValid();
}

inline void bindNothing(QSqlQuery&) {}

inline void bindProfile(QSqlQuery& query, std::optional<int> profileId)
{
    query.bindValue(QStringLiteral(":profile"), profileId ? QVariant(*profileId) : QVariant());
}

/// `select` from an hourly table, then the condition that a row belongs to a scope, then `tail`.
inline QString scoped(const QString& select, const QString& tail)
{
    return select +
           QStringLiteral(" WHERE \"day\" BETWEEN :first AND :last "
                          "AND (:profile IS NULL OR \"profile_id\"=:profile) ") +
           tail;
}

inline void bindDays(QSqlQuery& query, const HistoryScope& scope)
{
    const QDate first = scope.first.isNull() ? QDate(1, 1, 1) : scope.first;
    query.bindValue(QStringLiteral(":first"), Format::isoDay(first));
    query.bindValue(QStringLiteral(":last"), Format::isoDay(scope.last));
}

/// Binds what `scoped` left open.
inline void bindScope(QSqlQuery& query, const HistoryScope& scope)
{
    bindDays(query, scope);
    bindProfile(query, scope.profileId);
}

/// `forEachRow` for a statement that `scoped` made.
template <typename Take>
bool forEachScopedRow(const QSqlDatabase& connection, const QString& statement,
                      const HistoryScope& scope, Take take)
{
    return forEachRow(
        connection, statement, [&scope](QSqlQuery& query) { bindScope(query, scope); }, take);
}

} // namespace RowReader
