// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/UnzurgedCounts.h"

#include <QHash>
#include <QString>
#include <QVariant>

class Database;

/// The counts per application that go with a zurge. Plain value.
struct ZurgeApplications
{
    QHash<QString, UnzurgedCounts> amounts; ///< What is sent, by executable path.
    QVariantList list;                      ///< The same as the service reads it.

    /// Of the applications that the service knows; those with nothing to send are left out. Reads
    /// the tables `applications` and `application_uptime`.
    static ZurgeApplications from(Database& database,
                                  const QHash<QString, UnzurgedCounts>& unzurged);
};
