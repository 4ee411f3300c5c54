// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/QtSingleApplication.h"

#include "base/Log.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>
#include <QTimer>

#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace {

constexpr int RetryMs = 50;
constexpr int SilentSenderMs = 2000;

/// The path of the lock and the socket, without their suffix.
QString pathPrefix(const QString& id)
{
    QString directory = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (directory.isEmpty() || !QFileInfo(directory).isDir()) {
        directory = QDir::tempPath();
    }
    return QStringLiteral("%1/%2-%3").arg(directory, id).arg(getuid());
}

/// Whether the process that a lock file names is gone. QLockFile asks that itself, but not where
/// the machine was renamed since the lock was taken.
bool ownerIsGone(const QLockFile& lock)
{
    qint64 pid = 0;
    QString host;
    QString application;
    if (!lock.getLockInfo(&pid, &host, &application) || pid <= 0) {
        return false;
    }
    return kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH;
}

bool deliver(QLocalSocket& socket, const QByteArray& line, const QDeadlineTimer& deadline)
{
    const auto remaining = [&deadline] { return static_cast<int>(deadline.remainingTime()); };
    if (!socket.waitForConnected(remaining())) {
        return false;
    }
    socket.write(line);
    if (!socket.waitForBytesWritten(remaining())) {
        return false;
    }
    return socket.waitForReadyRead(remaining()) && socket.readAll().startsWith("ok");
}

} // namespace

QtSingleApplication::QtSingleApplication(const QString& id, int& argc, char** argv)
    : QApplication(argc, argv)
    , m_socketPath(pathPrefix(id) + QStringLiteral(".socket"))
    , m_lock(pathPrefix(id) + QStringLiteral(".lock"))
{
    // However old it is, the lock of a living client stands.
    m_lock.setStaleLockTime(0);
}

QtSingleApplication::~QtSingleApplication() = default;

bool QtSingleApplication::isRunning()
{
    if (m_server) {
        return false;
    }
    bool locked = m_lock.tryLock();
    if (!locked && ownerIsGone(m_lock) && m_lock.removeStaleLockFile()) {
        locked = m_lock.tryLock();
    }
    if (!locked && m_lock.error() == QLockFile::LockFailedError) {
        return true;
    }
    if (!locked) {
        Log::warn("Cannot guard against a second client: the lock {} cannot be written",
                  m_lock.fileName());
    }
    listen();
    return false;
}

void QtSingleApplication::listen()
{
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server.get(), &QLocalServer::newConnection, this,
            &QtSingleApplication::acceptConnections);
    // Only the holder of the lock gets here: a socket of that name was left by a crash.
    QLocalServer::removeServer(m_socketPath);
    if (!m_server->listen(m_socketPath)) {
        Log::warn("Cannot take messages from other clients: {}", m_server->errorString());
    }
}

void QtSingleApplication::acceptConnections()
{
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readMessage(socket); });
        // A sender that says nothing must not hold a descriptor for ever.
        QTimer::singleShot(SilentSenderMs, socket, &QLocalSocket::abort);
        readMessage(socket);
    }
}

void QtSingleApplication::readMessage(QLocalSocket* socket)
{
    if (!socket->canReadLine()) {
        if (socket->bytesAvailable() >= LongestMessage) {
            socket->abort();
        }
        return;
    }
    QByteArray line = socket->readLine(LongestMessage + 1);
    if (!line.endsWith('\n')) {
        socket->abort();
        return;
    }
    line.chop(1);
    socket->write("ok\n");
    // The answer must be on its way before the message is acted on, which may end the process.
    socket->flush();
    socket->disconnectFromServer();
    Q_EMIT messageReceived(QString::fromUtf8(line));
}

bool QtSingleApplication::sendMessage(const QString& message, int timeoutMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    const QByteArray line = message.toUtf8() + '\n';
    do {
        QLocalSocket socket;
        socket.connectToServer(m_socketPath);
        if (socket.state() != QLocalSocket::UnconnectedState) {
            return deliver(socket, line, deadline);
        }
        QThread::msleep(RetryMs);
    } while (!deadline.hasExpired());
    return false;
}

void QtSingleApplication::release()
{
    m_server.reset();
    m_lock.unlock();
}
