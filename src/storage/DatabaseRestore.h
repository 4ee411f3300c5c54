// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

#include <atomic>
#include <memory>

class QThread;

/// Prepares a database from an archive or a file to take the place of the client's own at the next
/// start: unpacked or copied, checked whole, and only then staged as "tallyvane-restore.db" (see
/// `StartupRepair::applyPendingRestore`). Until then nothing of what is there has changed. Works on
/// a thread of its own; destroying the object gives up what is under way. Thread: main.
class DatabaseRestore : public QObject
{
    Q_OBJECT

public:
    enum class Outcome
    {
        Staged,    ///< Restart the client to put it in place.
        Cancelled, ///< By `cancel`.
        Refused,   ///< The file is not fit; the text says why.
        Failed,    ///< It may be fit, but could not be read or staged; the text says why.
    };
    Q_ENUM(Outcome)

    explicit DatabaseRestore(const QString& dataDirectory, QObject* parent = nullptr);
    ~DatabaseRestore() override;

    /// Begins with `source`, a zip archive or a database; `finished` tells the end. False, without
    /// that signal, while another is under way. An archive that was downloaded to
    /// "tallyvane-restore.db.zip" is deleted in the end, however that is.
    bool start(const QString& source);

    void cancel(); ///< Gives up within a moment; `finished` tells what came of it.

    bool isRunning() const { return m_thread != nullptr; }

Q_SIGNALS:
    void progress(int percent); ///< Of the unpacking or copying, 0 to 100; only grows.
    void checking();            ///< From here on there is no telling how far it is.
    void finished(DatabaseRestore::Outcome outcome, const QString& text);

private:
    struct End
    {
        Outcome outcome = Outcome::Failed;
        QString text = {};
    };

    // On the working thread.
    End stage(const QString& source);
    End fetch(const QString& source);
    End copy(const QString& source);
    End unpack(const QString& archive);
    End check();
    End putInPlace();
    bool tell(qint64 done, qint64 total);

    void end();

    const QString m_directory;
    const QString m_part; ///< The database, until it is checked.
    std::unique_ptr<QThread> m_thread;
    std::atomic<bool> m_cancelled = false;
    int m_percent = -1; ///< Last told, by the thread.
    End m_end;          ///< Read once the thread has ended.
};
