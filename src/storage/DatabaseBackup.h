// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSqlDatabase>
#include <QString>
#include <QTimer>

#include <atomic>
#include <memory>

class QThread;
struct sqlite3;
struct sqlite3_backup;

/// Makes one consistent copy of an open database while it stays in use, by SQLite's online backup
/// (https://sqlite.org/backup.html): a few pages at a time from the event loop, on the connection
/// that does the writing, so that what is written meanwhile reaches the copy as well and no copying
/// starts over. The finished copy is written to the disk and checked in full by a thread of its
/// own; only a sound one takes the place of the copy before it.
///
/// Thread: that of the connection. Destroying the object abandons a copy in progress.
class DatabaseBackup : public QObject
{
    Q_OBJECT

public:
    DatabaseBackup(const QSqlDatabase& source, const QString& target, QObject* parent = nullptr);
    ~DatabaseBackup() override;

    /// Begins; `finished` tells the end. False where it could not begin (logged).
    bool start();

    bool isRunning() const;

Q_SIGNALS:
    /// The copy is in place (true), or the one before it still is.
    void finished(bool replaced);

private:
    struct CloseDatabase
    {
        void operator()(sqlite3* database) const;
    };

    struct FinishBackup
    {
        void operator()(sqlite3_backup* backup) const;
    };

    bool openTarget();
    void copySomePages();
    void checkCopy();
    bool isCopySound(); ///< Runs on the checking thread.
    void end(bool replaced);

    QSqlDatabase m_source;
    QString m_target;
    QString m_part; ///< The copy, until it is complete and checked.
    QTimer m_timer;
    std::unique_ptr<sqlite3, CloseDatabase> m_copy;
    std::unique_ptr<sqlite3_backup, FinishBackup> m_backup; ///< After the copy it belongs to.
    std::unique_ptr<QThread> m_checking;
    std::atomic<bool> m_abandoned = false;
    std::atomic<bool> m_sound = false;
};
