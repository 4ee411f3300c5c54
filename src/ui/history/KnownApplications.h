// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QHash>
#include <QSqlDatabase>
#include <QString>

#include <optional>

/// What is known of an application besides its counts of days. Plain value.
struct ApplicationFacts
{
    QString name; ///< Empty where it is not known.
    qint64 runningSeconds = 0;
    QDateTime lastUsed; ///< Local; invalid where unknown.
};

/// Reads what is known of the applications.
namespace KnownApplications {

/// By path, of one profile or of all; nothing where a statement failed (which is in the log).
std::optional<QHash<QString, ApplicationFacts>> read(const QSqlDatabase& connection,
                                                     std::optional<int> profileId);

/// Their names by path; nothing where the statement failed (which is in the log).
std::optional<QHash<QString, QString>> names(const QSqlDatabase& connection);

} // namespace KnownApplications
