// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/GuardedSocket.h"

#include "base/Log.h"

#include <QHostAddress>

#include <algorithm>

using namespace std::chrono_literals;

namespace {

/// Bytes held between requests. While more arrive, Qt's HTTP server comes to answer all requests
/// among them in one turn of the event loop, and those of many connections one after the other,
/// before any timer has its turn.
constexpr qint64 FirstPiece = 1'024;

/// A limit that is never reached.
constexpr std::chrono::milliseconds Ages = 24h;

std::chrono::milliseconds left(std::chrono::milliseconds limit, const QElapsedTimer& since)
{
    return limit == 0ms || !since.isValid() ? Ages
                                            : limit - std::chrono::milliseconds(since.elapsed());
}

} // namespace

GuardedSocket::GuardedSocket(const ConnectionLimits& limits, QObject* parent)
    : QTcpSocket(parent)
    , m_limits(limits)
{
    setReadBufferSize(FirstPiece);
    m_check.setSingleShot(true);
    connect(&m_check, &QTimer::timeout, this, &GuardedSocket::checkTimes);
    // Connected before any server sees the socket, so that it counts before they read.
    connect(this, &QIODevice::readyRead, this, &GuardedSocket::noteReceived);
    connect(this, &QIODevice::bytesWritten, this, [this] { m_lastByte.start(); });
    m_lastByte.start();
    scheduleCheck();
}

std::chrono::milliseconds GuardedSocket::silence() const
{
    return std::chrono::milliseconds(m_lastByte.elapsed());
}

void GuardedSocket::drop(const QString& reason)
{
    if (m_dropped || state() == UnconnectedState) {
        return;
    }
    m_dropped = true;
    Log::info("[ClientApi] Dropping the connection from {}: {}", peerAddress().toString(), reason);
    const auto end = [this] {
        abort();
        blockSignals(true); // A reader may have asked to be called again.
    };
    QMetaObject::invokeMethod(this, end, Qt::QueuedConnection);
}

void GuardedSocket::handOver()
{
    m_handedOver = true;
    noteAnswered();
}

/// All that is sent answers something: the servers of this room speak when spoken to, until a
/// handshake is over.
qint64 GuardedSocket::writeData(const char* data, qint64 size)
{
    if (bytesToWrite() > m_limits.unsentBytes) {
        flush();
    }
    if (bytesToWrite() > m_limits.unsentBytes) {
        drop(QStringLiteral("it does not take what it asked for"));
    }
    noteAnswered();
    return QTcpSocket::writeData(data, size);
}

/// A reader that keeps a transaction open has taken all there was before; one without leaves a
/// request in the buffer until the end of it is there.
void GuardedSocket::noteReceived()
{
    m_lastByte.start();
    // A line end before a request belongs to what was before it.
    constexpr qint64 lineEnd = 2;
    const qint64 available = bytesAvailable();
    if (m_handedOver || m_dropped ||
        (!m_requestBegan.isValid() && available <= lineEnd &&
         peek(available).trimmed().isEmpty())) {
        return;
    }
    m_unansweredBytes = isTransactionStarted() ? m_unansweredBytes + available : available;
    if (m_unansweredBytes >= readBufferSize() || m_unansweredBytes > m_limits.unansweredBytes) {
        // They may be many short requests, of which the first is answered at once.
        QMetaObject::invokeMethod(this, &GuardedSocket::checkBytes, Qt::QueuedConnection);
    }
    if (!m_requestBegan.isValid()) {
        m_requestBegan.start();
        scheduleCheck();
    }
}

void GuardedSocket::noteAnswered()
{
    m_unansweredBytes = 0;
    m_requestBegan.invalidate();
    if (!m_handedOver && readBufferSize() == wholeRequest()) {
        setReadBufferSize(FirstPiece);
    }
}

/// Twice the limit, since a request of that length must fit, and one beyond be noticed.
qint64 GuardedSocket::wholeRequest() const
{
    return 2 * m_limits.unansweredBytes;
}

void GuardedSocket::checkBytes()
{
    if (m_unansweredBytes > m_limits.unansweredBytes) {
        drop(QStringLiteral("its request is too long"));
    } else if (m_unansweredBytes > 0 && readBufferSize() == FirstPiece) {
        setReadBufferSize(wholeRequest());
    }
}

void GuardedSocket::checkTimes()
{
    if (left(m_limits.unanswered, m_requestBegan) <= 0ms) {
        drop(QStringLiteral("its request takes too long"));
    } else if (left(m_limits.idle, m_lastByte) <= 0ms) {
        drop(QStringLiteral("it is silent"));
    } else {
        scheduleCheck();
    }
}

/// Leaves a timer that runs out earlier as it is: it will see what is left then. So a busy
/// connection starts no timer for each of its requests.
void GuardedSocket::scheduleCheck()
{
    const std::chrono::milliseconds wait = timeLeft();
    if (wait < Ages && (!m_check.isActive() || m_check.remainingTimeAsDuration() > wait)) {
        m_check.start(wait);
    }
}

std::chrono::milliseconds GuardedSocket::timeLeft() const
{
    const auto least =
        std::min(left(m_limits.unanswered, m_requestBegan), left(m_limits.idle, m_lastByte));
    return std::max(least, std::chrono::milliseconds(1ms));
}
