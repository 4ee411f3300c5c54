// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/LocalStats.h"
#include "profiles/ProfileManager.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "support/FakeSystem.h"

#include <QSqlRecord>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>

/// What the statistics find around them: a new database file, the account totals, the profiles, and
/// a machine that the test sets up.
class Client
{
public:
    Client() { totals.setup(directory.path()); }

    /// Runs a statement. True where it succeeded.
    bool run(const QString& sql) { return DSqlQuery(&database).exec(sql); }

    /// The rows of a query, their columns separated by blanks.
    QStringList rows(const QString& sql)
    {
        DSqlQuery query(&database, sql, true);
        QStringList found;
        while (query.next()) {
            QStringList columns;
            for (int column = 0; column < query.record().count(); ++column) {
                columns += query.value(column).toString();
            }
            found += columns.join(QLatin1Char(' '));
        }
        return found;
    }

    /// The first column of a query's first row.
    QVariant value(const QString& sql)
    {
        DSqlQuery query(&database, sql, true);
        return query.next() ? query.value(0) : QVariant();
    }

private:
    class SilentPrompts : public DatabasePrompts
    {
    public:
        void showFailure(const QString&, const QString&) override {}

        bool confirmFreshDatabase(const QString&) override { return false; }
    };

    SilentPrompts m_prompts;

public:
    QTemporaryDir directory;
    Database database{directory.path(), m_prompts};
    LocalStats totals;
    ProfileManager profiles;
    FakeSystem system;
};
