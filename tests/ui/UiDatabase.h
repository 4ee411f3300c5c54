// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/Database.h"

#include <QDate>
#include <QTemporaryDir>

#include <memory>

/// A real database in a temporary directory, and rows in it as the statistics write them.
class UiDatabase final : public DatabasePrompts
{
public:
    UiDatabase();
    ~UiDatabase() override;

    /// A prompt is a failure of the test.
    void showFailure(const QString& title, const QString& text) override;
    bool confirmFreshDatabase(const QString& text) override;

    QString file() const;
    QSqlDatabase connection() const;

    void addHour(const QDate& day, int hour, qint64 keys, int profile = 0);
    void addKey(const QDate& day, int hour, int key, qint64 keys, int profile = 0);
    void addApplication(const QDate& day, int hour, const QString& path, qint64 keys,
                        int profile = 0);

    /// A working day of about 22,000 keys from 8 to 23 o'clock in two profiles.
    void addBusyDay(const QDate& day);

private:
    void insert(const QString& statement, const QVariantList& values);

    QTemporaryDir m_directory;
    std::unique_ptr<Database> m_database;
};
