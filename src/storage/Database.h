// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/DatabaseFiles.h"
#include "storage/DatabasePrompts.h"

#include <QObject>
#include <QSqlDatabase>
#include <QString>

#include <memory>
#include <optional>

class BackgroundCheck;
class DatabaseBackup;
struct IntegrityCheck;

/// The client's SQLite database "tallyvane.db": opens, tunes, checks, upgrades and rescues it.
/// One instance; thread: main.
///
///     open, version, pragmas, check --ok--> setup (schema, upgrade) --> Open, and ".backup"
///     refreshed
///        |          |           |
///        |          |           damaged --> ".backup" put in its place --> open again
///        |          |                          | none, or damaged too
///        |          |                          ask --yes--> open a new one; --no--> Failed
///        |          newer --> NewerVersion
///        not accessible --> Failed
///
/// The check of a large database would hold up the start for seconds: it is opened unchecked, and
/// `checkInBackground` makes up for it. Until that has said "ok", the ".backup" stays as it is.
///
/// Nothing that was there is deleted: a damaged file is kept beside the new one under a dated name,
/// and an old one is copied before it is upgraded.
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
    /// Up to this size a database is checked before it is used: a fraction of a second.
    static constexpr qint64 LargestCheckedAtOpening = Q_INT64_C(32) << 20;

    static inline const QString ConnectionName = QStringLiteral("tv-db-connection");

    /// Opens "tallyvane.db" in `dataDirectory`, creating, upgrading or rescuing it as needed; see
    /// `state` for how that ended.
    Database(const QString& dataDirectory, DatabasePrompts& prompts, QObject* parent = nullptr);

    /// Closes the connection.
    ~Database() override;

    /// The one database; null before it was created and after it was destroyed.
    static Database* instance();

    /// Opens the database file `fileName`; see `state` for how that ended.
    void loadDatabase(const QString& fileName);

    /// Creates what the schema lacks and upgrades an older one. False where that failed; the reason
    /// is kept for the user.
    bool setupDatabase();

    /// Creates the temporary tables, which live as long as the connection.
    bool setupDatabase_TempTables();

    /// SQLite's quick check: "ok", or what is wrong.
    QString checkDatabase();

    /// SQLite's full check, indexes against tables included; takes seconds on a large database.
    QString checkDatabaseFull();

    /// Begins the check that a large database was opened without, in a thread of its own; does
    /// nothing on one that was checked. See `damageFound`.
    void checkInBackground();

    /// Deletes the statistics and starts today at zero. False where nothing was deleted.
    bool cleanDatabase();

    /// As `cleanDatabase`, and all else that was counted, logged or received; what the user has set
    /// up (settings, profiles, milestones, excluded interfaces) stays.
    bool cleanDatabaseUser();

    void closeDatabase();

    /// Opens the connection again where it was closed. False where that failed.
    bool reconnectIfNeeded();

    /// Begins to refresh the ".backup" copy from the event loop; see `DatabaseBackup`. Does nothing
    /// while one is in progress, and unless the state is Open and the database is checked.
    void backupDatabase();

    /// Leaves the file to another connection of this process that changes much of it in one
    /// transaction. Until `takeBack`, whoever works on the main connection holds what can wait
    /// (see `isLent`); what reads or writes all the same fails at once where it would have to wait.
    void lend();
    void takeBack();

    bool isLent() const { return m_lent; }

    State state() const { return m_state; }

    QSqlDatabase connection() const; ///< The main thread's connection.

    QString getDatabaseFileName() const { return m_files.fileName(); }

    qint64 getDatabaseFileSize() const; ///< Bytes; 0 when there is no file.

    /// The path under which a damaged file was kept in this run; empty where none was.
    QString keptDamagedFile() const { return m_keptFile; }

    /// The profile whose statistics the views show; none, as at first, stands for all profiles.
    void setProfileFilter(std::optional<int> profileId);
    std::optional<int> profileFilter() const;

    /// The SQL condition that restricts a query to the profile filter: "profile_id = 3", or "1"
    /// where all profiles are shown. `table` is the table's name or alias in that query, or empty.
    QString generateWhereQueryProfileFilter(const QString& table) const;

Q_SIGNALS:
    /// The connection is about to close: whoever holds a query on it must let go of it now.
    void aboutToClose();

    /// The check in the background found damage, and so did the main connection. The next opening
    /// of the file will check it first, and rescue it: whoever gets this restarts the client.
    void damageFound();

    /// The statistics were deleted at the user's wish, while counting goes on.
    void cleaned();

    /// The database is no longer lent.
    void takenBack();

    /// The ".backup" copy was refreshed (true), or stays as it was.
    void backupFinished(bool refreshed);

private:
    enum class Outcome
    {
        Opened,
        Newer,
        Damaged,
        Failed,
        Declined, ///< The user wants no new database.
    };

    Outcome open();
    Outcome checkOpened();
    bool mayBeCheckedLater();
    void takeBackgroundCheck(const IntegrityCheck& check);
    Outcome rescue();
    Outcome restore();
    Outcome startFresh();
    bool prepareFile();
    bool openConnection();
    bool tellCleaned(bool cleaned);
    int readVersion();
    bool createSchema();
    bool copyBeforeUpgrade();
    bool upgrade();
    void finishOpening(Outcome outcome);
    void fail(const QString& text);
    QString setupFailure(const QString& reason) const;
    void backupIfDue();

    DatabasePrompts& m_prompts;
    DatabaseFiles m_files;
    QSqlDatabase m_connection;
    State m_state = State::Closed;
    DatabaseFiles::Access m_access = DatabaseFiles::Access::ReadWrite;
    int m_version = 0;        ///< As found in the file.
    bool m_unchecked = false; ///< Opened without a check.
    QString m_failure;        ///< What the user is told when opening fails.
    QString m_keptFile;       ///< See `keptDamagedFile`.
    bool m_lent = false;
    std::optional<int> m_profileFilter;
    std::unique_ptr<BackgroundCheck> m_backgroundCheck;
    std::unique_ptr<DatabaseBackup> m_backup;
};
