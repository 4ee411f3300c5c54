// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

/// A connection to a database file beside the client's own, to prepare it and to look at it.
class SampleDatabase
{
public:
    explicit SampleDatabase(const QString& fileName);
    ~SampleDatabase();

    SampleDatabase(const SampleDatabase&) = delete;
    SampleDatabase& operator=(const SampleDatabase&) = delete;

    /// Writes a database as a client of schema version `version` left it, with rows in every table.
    static void create(const QString& fileName, int version);

    bool exec(const QString& statement);
    int version() const;
    bool isSound() const;
    QStringList tables() const;
    QStringList columns(const QString& table) const;

    /// All rows, joined by "; ", their columns by "|".
    QString rows(const QString& query) const;

    /// A table's columns and its index, as in schema.txt.
    QString description(const QString& table) const;
    static QString description(const QSqlDatabase& connection, const QString& table,
                               const QString& schema);

private:
    static QString rowsOf(const QSqlDatabase& connection, const QString& query);

    QSqlDatabase m_connection;
};

/// The lines of a file such as schema.txt: what each table should look like, by its name.
QMap<QString, QString> expectedSchema(const QString& fileName);
