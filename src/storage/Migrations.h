// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>

/// Upgrades the schema step by step: script N of the directory brings a database of version N - 1
/// to version N. Each step is one transaction that includes the version number, which lives in the
/// file's header and rolls back with the rest: wherever an upgrade ends, the database is at one
/// version, whole. Thread: that of the connection.
class Migrations
{
public:
    explicit Migrations(const QSqlDatabase& connection,
                        const QString& scriptDirectory = QStringLiteral(":/db-upgrades"));

    /// Runs the steps `from` + 1 to `to`. A step that fails is rolled back and ends the upgrade;
    /// false, and see `failure`.
    bool run(int from, int to);

    /// Why the last run ended early, in the database's words.
    const QString& failure() const;

private:
    bool runStep(int step);
    bool runStatements(const QStringList& statements);
    bool runStatement(const QString& statement);
    bool addsExistingColumn(const QString& statement) const;

    QSqlDatabase m_connection;
    QString m_scriptDirectory;
    QString m_failure;
};
