// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QLockFile>
#include <QString>

#include <memory>

class QLocalServer;
class QLocalSocket;

/// The application object, of which one runs per user and id; others hand it a message.
///
/// A lock file decides who is first, so that two starts in one instant end with one client; the
/// kernel and the process table tell a lock left by a crash from one in use. A local socket beside
/// it carries the messages. Both lie in `$XDG_RUNTIME_DIR`, else in the temporary directory, and
/// carry the id and the user's number in their names.
///
/// Protocol: the sender writes one line of UTF-8 text, at most `LongestMessage` bytes, ended by a
/// line feed; the receiver answers "ok" and a line feed. Thread: main.
class QtSingleApplication : public QApplication
{
    Q_OBJECT

public:
    static constexpr qint64 LongestMessage = 1024; ///< Bytes, the line feed included.

    QtSingleApplication(const QString& id, int& argc, char** argv);
    ~QtSingleApplication() override;

    /// Whether another process of this user and id runs. The first call that finds none makes this
    /// process the one that others find.
    bool isRunning();

    /// Hands `message` to the running process; false where it did not take it within `timeoutMs`.
    /// One that holds the lock and does not listen yet is waited for. Blocks.
    bool sendMessage(const QString& message, int timeoutMs);

    /// Gives up the place, so that the next start finds it free. For a process about to end without
    /// running destructors.
    void release();

Q_SIGNALS:
    void messageReceived(const QString& message);

private:
    void listen();
    void acceptConnections();
    void readMessage(QLocalSocket* socket);

    QString m_socketPath;
    QLockFile m_lock;
    std::unique_ptr<QLocalServer> m_server; ///< Null until this process is the running one.
};
