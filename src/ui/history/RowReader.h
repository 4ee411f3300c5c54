// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Format.h"
#include "storage/DSqlQuery.h"
#include "ui/history/HistoryScope.h"

/// Reads rows of hourly tables.
namespace RowReader {

/// `select`, then the condition that a row belongs to a scope, then `tail`.
inline QString scoped(const QString& select, const QString& tail = QString())
{
    return select +
           QStringLiteral(" WHERE \"day\" BETWEEN :first AND :last "
                          "AND (:profile IS NULL OR \"profile_id\"=:profile) ") +
           tail;
}

/// Binds what `scoped` left open.
inline void bindScope(QSqlQuery& query, const HistoryScope& scope)
{
    const QDate first = scope.first.isNull() ? QDate(1, 1, 1) : scope.first;
    query.bindValue(QStringLiteral(":first"), Format::isoDay(first));
    query.bindValue(QStringLiteral(":last"), Format::isoDay(scope.last));
    query.bindValue(QStringLiteral(":profile"),
                    scope.profileId ? QVariant(*scope.profileId) : QVariant());
}

/// Runs a statement that `scoped` made and hands each row to `take`; false where it failed. `bind`
/// binds what else the statement leaves open.
template <typename Take, typename Bind = void (*)(QSqlQuery&)>
bool forEachRow(
    const QSqlDatabase& connection, const QString& statement, const HistoryScope& scope, Take take,
    Bind bind = [](QSqlQuery&) {})
{
    DSqlQuery query(connection);
    query.setForwardOnly(true);
    if (!query.prepare(statement)) {
        return false;
    }
    bindScope(query, scope);
    bind(query);
    if (!query.exec()) {
        return false;
    }
    while (query.next()) {
        take(query);
    }
    return true;
}

} // namespace RowReader
