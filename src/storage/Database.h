// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSqlDatabase>
#include <QString>

/// What the database must ask or tell the user. Implemented above this room. Thread: main.
class DatabasePrompts
{
public:
    DatabasePrompts() = default;
    DatabasePrompts(const DatabasePrompts&) = delete;
    DatabasePrompts& operator=(const DatabasePrompts&) = delete;
    virtual ~DatabasePrompts() = default;

    virtual void showFailure(const QString& title, const QString& text) = 0;

    /// Asks whether to start with a new, empty database; true means yes.
    virtual bool confirmFreshDatabase(const QString& text) = 0;
};

/// The client's SQLite database "tallyvane.db": opens, tunes, checks, upgrades and rescues it.
/// One instance; thread: main.
class Database : public QObject
{
    Q_OBJECT

public:
    enum class State
    {
        Closed,       ///< Not open, or closed again.
        Open,         ///< Open for reading and writing, at the current schema version.
        ReadOnly,     ///< Open, but nothing can be stored; the user was told.
        NewerVersion, ///< Written by a newer client: closed and untouched; the user was told.
        Failed,       ///< Could not be opened or set up; the user was told.
    };

    static constexpr int SchemaVersion = 11;
    static inline const QString ConnectionName = QStringLiteral("tv-db-connection");
    static inline const QString FileName = QStringLiteral("tallyvane.db");

    /// Opens "tallyvane.db" in `dataDirectory`, creating, upgrading or rescuing it as needed; see
    /// `state` for how that ended.
    Database(const QString& dataDirectory, DatabasePrompts& prompts, QObject* parent = nullptr);

    /// Closes the connection.
    ~Database() override;

    /// The one database; null before it was created and after it was destroyed.
    static Database* instance();

    State state() const;
    QSqlDatabase connection() const; ///< The main thread's connection.
    QString getDatabaseFileName() const;
    qint64 getDatabaseFileSize() const; ///< Bytes; 0 when there is no file.
};
