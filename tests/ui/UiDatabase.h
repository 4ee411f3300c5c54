// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/TestDatabase.h"

#include <QDate>

/// A real database in a temporary directory, and rows in it as the statistics write them.
class UiDatabase final : public TestDatabase
{
public:
    QString file() const { return database()->getDatabaseFileName(); }

    QSqlDatabase connection() const { return database()->connection(); }

    void addHour(const QDate& day, int hour, qint64 keys, int profile = 0);
    void addKey(const QDate& day, int hour, int key, qint64 keys, int profile = 0);
    void addApplication(const QDate& day, int hour, const QString& path, qint64 keys,
                        int profile = 0);

    /// A working day of about 22,000 keys from 8 to 23 o'clock in two profiles.
    void addBusyDay(const QDate& day);

    /// Traffic of two interfaces, three applications, five countries and four services, of a size
    /// that depends on the hour.
    void addTraffic(const QDate& day);

private:
    void insert(const QString& statement, const QVariantList& values) const;
};
