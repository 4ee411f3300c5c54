// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "profiles/ProfileFold.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <atomic>
#include <memory>

class ProfileManager;
class QThread;

/// Deletes a profile on a thread and a connection of its own, as millions of rows may change hands.
/// The database is lent to it meanwhile: what is counted is kept, and written afterwards.
///
/// Closing the database, or destroying this object, cancels what is under way, waits for it and
/// leaves the profile as it was. Thread: main.
class ProfileDeletion : public QObject
{
    Q_OBJECT

public:
    explicit ProfileDeletion(ProfileManager& profiles, QObject* parent = nullptr);
    ~ProfileDeletion() override;

    /// Begins; `finished` tells the end. False, without that signal, where the profile is the
    /// default one, the database cannot be written, or a deletion is under way.
    bool start(int id);

    /// Gives up within a fraction of a second, but for the time to undo what was done; too late
    /// once the transaction is being committed. `finished` tells what came of it.
    void cancel();

    /// As `cancel`, and returns when `finished` was emitted. Does nothing where none is under way.
    void cancelAndWait();

    bool isRunning() const { return m_thread != nullptr; }

Q_SIGNALS:
    void progress(int percent); ///< 0 to 100; only grows.
    void finished(ProfileFold::Result result);

private:
    void run(const QString& fileName, int id); ///< On the deleting thread.
    void tell(int percent);                    ///< On the deleting thread.
    void end();

    ProfileManager& m_profiles;
    std::unique_ptr<QThread> m_thread;
    std::atomic<bool> m_cancelled = false;
    int m_id = 0;
    int m_percent = 0;                                          ///< Last told, by the thread.
    ProfileFold::Result m_result = ProfileFold::Result::Failed; ///< Read once the thread has ended.
    QElapsedTimer m_timer;
};
