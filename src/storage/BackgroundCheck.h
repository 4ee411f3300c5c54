// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/IntegrityCheck.h"

#include <QObject>
#include <QSqlDatabase>
#include <QString>

#include <atomic>
#include <memory>

class QThread;

/// Runs SQLite's quick check on a database that stays in use, in a thread of its own. It takes no
/// lock, since a writer would wait for as long as the check lasts. So it may read one half of a
/// change and take that for damage: a fault is looked for again, and what is found each time is
/// confirmed on the connection that does the writing before it is told.
///
/// Thread: main. Destroying the object abandons the check within a moment.
class BackgroundCheck : public QObject
{
    Q_OBJECT

public:
    /// Will check the file that `writer`, a connection of this thread, has open.
    explicit BackgroundCheck(const QSqlDatabase& writer, QObject* parent = nullptr);
    ~BackgroundCheck() override;

    /// Whether the database can be checked so: its schema can be read, and a check be abandoned.
    static bool suits(const QSqlDatabase& writer);

    /// Begins; `finished` tells the end.
    void start();

Q_SIGNALS:
    void finished(const IntegrityCheck& check);

private:
    void check(); ///< Runs on the checking thread.
    void end();

    QSqlDatabase m_writer;
    QString m_databaseFile;
    std::unique_ptr<QThread> m_thread;
    std::atomic<bool> m_abandoned = false;
    IntegrityCheck m_result; ///< Written by the thread, read once it has ended.
};
