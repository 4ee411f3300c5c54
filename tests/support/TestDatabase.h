// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/Settings.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlRecord>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>

#include <memory>

/// Answers what the database asks, and remembers what it told.
class TestPrompts : public DatabasePrompts
{
public:
    enum class Answer
    {
        No,
        Yes,
    };

    void showFailure(const QString& title, const QString& text) override
    {
        titles << title;
        texts << text;
    }

    bool confirmFreshDatabase(const QString& text) override
    {
        questions << text;
        return answer == Answer::Yes;
    }

    Answer answer = Answer::Yes;
    QStringList titles; ///< Of the failures shown.
    QStringList texts;
    QStringList questions;
};

/// The template of a temporary directory, in memory where that can be: a database waits for the
/// disk many times, and tests open hundreds.
inline QString fastTemporaryDirectory()
{
    const QString memory = QStringLiteral("/dev/shm");
    return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) +
           QStringLiteral("/tallyvane-XXXXXX");
}

/// A temporary data directory with a new database in it and the settings initialised on that. Only
/// one may live at a time, as there is only one database.
class TestDatabase
{
public:
    TestDatabase()
        : m_database(std::make_unique<Database>(m_directory.path(), m_prompts))
    {
        initSettings();
    }

    ~TestDatabase() { close(); }

    TestDatabase(const TestDatabase&) = delete;
    TestDatabase& operator=(const TestDatabase&) = delete;

    /// Closes the database and opens it again, as the next run of the client would.
    void reopen()
    {
        close();
        m_database = std::make_unique<Database>(m_directory.path(), m_prompts);
        initSettings();
    }

    void close()
    {
        Settings::instance().close();
        m_database.reset();
    }

    Database* database() const { return m_database.get(); }

    TestPrompts& prompts() { return m_prompts; }

    QString directory() const { return m_directory.path(); }

    bool exec(const QString& statement) const { return DSqlQuery(database()).exec(statement); }

    /// The first column of the first row; invalid where there is none.
    QVariant value(const QString& query) const
    {
        DSqlQuery select(database(), query, true);
        return select.next() ? select.value(0) : QVariant();
    }

    /// All rows, joined by ",", their columns by "|".
    QString rows(const QString& query) const
    {
        DSqlQuery select(database(), query, true);
        QStringList rows;
        while (select.next()) {
            QStringList columns;
            for (int i = 0; i < select.record().count(); ++i) {
                columns << select.value(i).toString();
            }
            rows << columns.join(QLatin1Char('|'));
        }
        return rows.join(QLatin1Char(','));
    }

private:
    void initSettings()
    {
        Settings::instance().init(m_database.get());
        Settings::instance().initializeDefaultSettings();
    }

    QTemporaryDir m_directory{fastTemporaryDirectory()};
    TestPrompts m_prompts;
    std::unique_ptr<Database> m_database;
};
