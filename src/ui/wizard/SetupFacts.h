// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/BrowserAuthorization.h"

#include <QList>
#include <QString>

/// What the first steps begin with. Plain value.
struct SetupFacts
{
    QString databaseFile;
    QString userName = {};            ///< Of the account linked already; empty for none.
    QList<OnlineBackup> backups = {}; ///< What that account keeps, newest first.
};
