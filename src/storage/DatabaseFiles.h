// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

/// The database file and those beside it, as files: what is there, and how one takes another's
/// place so that an end of the program at any instant leaves either the old file or the new one
/// whole.
///
/// To be used on a database while no connection of this process has it open: closing any descriptor
/// of a file drops the locks that SQLite holds on it (https://sqlite.org/howtocorrupt.html,
/// section 2.2).
class DatabaseFiles
{
public:
    enum class Kind
    {
        Missing,
        Empty,
        Stub, ///< Too short for a database; SQLite takes a single byte for an empty file.
        Regular,
        Other, ///< A directory, a device, ...
    };

    enum class Access
    {
        ReadWrite,
        ReadOnly,
    };

    static inline const QString Name = QStringLiteral("tallyvane.db");
    static inline const QString ArchiveName = QStringLiteral("tallyvane.db.zip");
    static inline const QString RestoreName = QStringLiteral("tallyvane-restore.db");
    static inline const QString RestoreArchiveName = QStringLiteral("tallyvane-restore.db.zip");
    static inline const QString ReplacedName = QStringLiteral("tallyvane-before-restore.db");

    DatabaseFiles() = default;
    explicit DatabaseFiles(const QString& fileName);

    const QString& fileName() const;
    QString backupFileName() const;          ///< The copy that a damaged database is restored from.
    QString copyFileName(int version) const; ///< The copy made before an upgrade from `version`.
    QString directory() const;

    Kind kind() const;
    bool hasBackup() const;

    /// Whether SQLite can change the database: write the file, and write or create its journal.
    Access access() const;

    /// The schema version in the file's header, read without SQLite and without any change to the
    /// file or beside it. Null where there is no SQLite header or a transaction waits to be rolled
    /// back, so that the header may not be what it says.
    std::optional<int> storedVersion() const;

    /// Creates an empty database file, mode 0600, or narrows the mode of the one that is there.
    bool makePrivate() const;

    /// Copies `source` to `target`, mode 0600, through a temporary name and to the disk before it
    /// takes the place of what was there. On failure nothing has changed, and the reason is
    /// returned.
    static std::optional<QString> copy(const QString& source, const QString& target);

    /// Creates an empty file, mode 0600, or empties the one that is there. True if it did.
    static bool createEmpty(const QString& path);

    /// Forces a file's content, or a directory's entries, to the disk. True if it did.
    static bool syncToDisk(const QString& path);

    /// Writes a finished file to the disk and lets it take the place of `target`. True if it did.
    static bool replace(const QString& source, const QString& target);

    /// The first free name of the form "path-yyyyMMdd-HHmmss", with a number behind it where one
    /// second sees several.
    static QString datedName(const QString& path);

    /// Keeps the database under a dated name, together with its journal, and returns that name;
    /// null where that failed. The file itself stays as a second name of the same content where the
    /// file system can do that, so that at no instant the database is missing.
    std::optional<QString> keepDamaged() const;

    /// Moves the ".backup" copy to a dated name. True also where there is none.
    bool keepBackup() const;

    /// Whether the database was found damaged while it was open: it must be checked before it is
    /// used again. The mark is a file beside it, so that it outlives the process.
    bool isMarkedDamaged() const;
    bool markDamaged() const; ///< False where the mark could not be made.
    void unmarkDamaged() const;

    /// Puts `file`, on the same file system, in the place of the database, which is kept beside it
    /// as `ReplacedName`, together with its journal. One kept before moves on to a dated name. On
    /// failure the database is what it was (false).
    bool replaceBy(const QString& file) const;

    /// Removes the database and what SQLite kept beside it, which it would apply to the next file
    /// of that name.
    void remove() const;

    /// Puts an empty file, mode 0600, in the place of the database. True if it did.
    bool startEmpty() const;

private:
    QString damageMarkName() const;
    QString replacedFileName() const;
    bool keepReplaced() const;
    void takeBackReplaced() const;

    QString m_fileName;
};
