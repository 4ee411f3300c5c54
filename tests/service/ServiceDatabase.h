// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariantList>

/// The service's SQLite file. Another program may read it meanwhile. A statement that fails ends
/// the process with the reason: in a service for tests that is a fault of the service itself.
class ServiceDatabase
{
public:
    /// Opens the file, and makes it with its tables where it is not there.
    explicit ServiceDatabase(const QString& path);
    ~ServiceDatabase();

    ServiceDatabase(const ServiceDatabase&) = delete;
    ServiceDatabase& operator=(const ServiceDatabase&) = delete;

    QString path() const { return m_database.databaseName(); }

    QSqlQuery run(const QString& statement, const QVariantList& values = {});

    /// The first column of the first row; invalid where there is no row.
    QVariant value(const QString& statement, const QVariantList& values = {});

    /// Rolls back unless committed.
    class Transaction
    {
    public:
        explicit Transaction(ServiceDatabase& database);
        ~Transaction();

        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;

        void commit();

    private:
        ServiceDatabase& m_database;
        bool m_open = true;
    };

private:
    QSqlDatabase m_database;
};
