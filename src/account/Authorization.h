// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/AccountIdentity.h"

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

#include <optional>

/// A backup that the service keeps. Plain value.
struct OnlineBackup
{
    QString fileName;
    QDateTime createdAt; ///< Local time; invalid where the service does not say.
    qint64 bytes = 0;    ///< 0 where the service does not say.

    friend bool operator==(const OnlineBackup&, const OnlineBackup&) = default;
};

/// What the service hands over once the user has authorised this computer. Plain value.
struct Authorization
{
    AccountIdentity identity;
    QString zurgeToken;
    QDateTime lastZurge; ///< Local time; invalid where there was none.
    QMap<QString, QVariant> totals;
    QMap<QString, QVariant> ranks;
    QMap<QString, QVariant> computerStats; ///< Empty: a new computer.
    QList<OnlineBackup> backups;           ///< Newest first.
    QMap<QString, QVariant> clientSettings;
};

/// Whether `data`, of an answer to "client_check_authorization", is meant to be an authorisation:
/// it holds a user, a computer and a password hash. Any thread.
bool holdsAuthorization(const QMap<QString, QVariant>& data);

/// The authorisation in `data`; nothing where the user, the computer or the password hash is not
/// what it should be. Whatever else is not is left out. Takes any values. Any thread.
std::optional<Authorization> parseAuthorization(const QMap<QString, QVariant>& data);

/// The backups in a list "database_backups", newest first; entries without a plain file name are
/// left out. Takes any value. Any thread.
QList<OnlineBackup> parseOnlineBackups(const QVariant& list);
