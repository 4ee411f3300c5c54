// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>

/// The file of the roll-ups: a database that can be made anew from the client's at any time, so
/// that it is written without waiting for the disk. What an interrupted write may have left behind
/// is never read: the file says whether it is settled, that is, whether all that was written has
/// reached the disk.
///
/// Thread: that of whoever opens it.
class RollUpFile
{
public:
    explicit RollUpFile(const QString& fileName);

    /// Settles what was written, and closes.
    ~RollUpFile();

    RollUpFile(const RollUpFile&) = delete;
    RollUpFile& operator=(const RollUpFile&) = delete;

    /// Opens the file that is there; false where there is none, or where it is damaged, unsettled
    /// or another version's.
    bool open();

    /// Deletes what is there, and makes an empty file in its place. False where that is not
    /// possible.
    bool create();

    /// Closes the file and deletes it.
    void remove();

    const QString& fileName() const { return m_fileName; }

    const QSqlDatabase& connection() const { return m_connection; }

    /// A value that was stored under a name; empty where there is none.
    QString value(const QString& name) const;
    bool setValue(const QString& name, const QString& value);

    /// Begins a transaction. A file that was settled is not any more.
    bool begin();
    bool commit();
    void rollback();

    /// Waits until all that was written is on the disk.
    bool settle();

private:
    bool openConnection();
    bool createTables();
    bool exec(const QString& statement) const;
    bool writeThrough(const QString& settled);
    void close();

    QString m_fileName;
    QString m_connectionName;
    QSqlDatabase m_connection;
    bool m_isSettled = false;
};
