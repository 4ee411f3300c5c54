// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "clientapi/ConnectionLimits.h"

#include <QElapsedTimer>
#include <QString>
#include <QTcpSocket>
#include <QTimer>

#include <chrono>

/// A connection that ends itself, with a log line, once its client asks more of us than the limits
/// allow. The HTTP and WebSocket servers, which bound little of this, read and write it as any
/// socket. Thread: main.
class GuardedSocket : public QTcpSocket
{
    Q_OBJECT

public:
    explicit GuardedSocket(const ConnectionLimits& limits, QObject* parent = nullptr);

    /// How long no byte went either way.
    std::chrono::milliseconds silence() const;

    /// Ends the connection from the event loop, so that whoever reads it now finishes. `reason`
    /// completes the log line. Further calls do nothing.
    void drop(const QString& reason);

    /// What came and went so far was the handshake of another protocol, which bounds its messages
    /// itself: only silence and what waits to be sent are bounded from now on.
    void handOver();

protected:
    qint64 writeData(const char* data, qint64 size) override;

private:
    void noteReceived();
    void noteAnswered();
    qint64 wholeRequest() const;
    void checkBytes();
    void checkTimes();
    void scheduleCheck();
    std::chrono::milliseconds timeLeft() const;

    ConnectionLimits m_limits;
    QElapsedTimer m_lastByte;
    QElapsedTimer m_requestBegan; ///< Invalid between requests.
    qint64 m_unansweredBytes = 0;
    bool m_handedOver = false;
    bool m_dropped = false;
    QTimer m_check; ///< Runs out when, at the earliest, a time limit may be passed.
};
