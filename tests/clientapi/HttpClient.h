// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QTcpSocket>
#include <QTest>

/// What a server answered. Plain value.
struct HttpAnswer
{
    int status = 0; ///< 0: there was no answer, or not all of one.
    QByteArray head;
    QByteArray body;

    /// Empty where there is none.
    QByteArray header(const QByteArray& name) const
    {
        for (const QByteArray& line : head.split('\n')) {
            if (line.toLower().startsWith(name.toLower() + ':')) {
                return line.mid(name.size() + 1).trimmed();
            }
        }
        return {};
    }
};

/// A connection to a server of the same thread, for bytes that no well-meaning client would send.
class HttpClient
{
public:
    explicit HttpClient(quint16 port,
                        const QHostAddress& address = QHostAddress(QHostAddress::LocalHost))
    {
        QObject::connect(&m_socket, &QIODevice::readyRead, &m_socket, [this] { read(); });
        m_socket.connectToHost(address, port);
        (void)QTest::qWaitFor(
            [this] { return m_socket.state() != QAbstractSocket::ConnectingState; });
    }

    void send(const QByteArray& bytes) { m_socket.write(bytes); }

    void sendNoMore() { m_socket.disconnectFromHost(); }

    /// The next answer, once all of it is here or the connection has ended.
    HttpAnswer answer()
    {
        HttpAnswer next;
        (void)QTest::qWaitFor([&] { return take(next) || isEnded(); });
        return next;
    }

    HttpAnswer ask(const QByteArray& request)
    {
        send(request);
        return answer();
    }

    bool isEnded() const { return m_socket.state() == QAbstractSocket::UnconnectedState; }

    bool waitForEnd()
    {
        return QTest::qWaitFor([this] { return isEnded(); });
    }

    /// From here on, what the server sends stays in the kernel's buffers.
    void stopReading()
    {
        m_reads = false;
        m_socket.setReadBufferSize(1);
    }

private:
    void read()
    {
        if (m_reads) {
            m_received += m_socket.readAll();
        }
    }

    bool take(HttpAnswer& answer)
    {
        constexpr qsizetype gapBytes = 4;
        const qsizetype end = m_received.indexOf("\r\n\r\n");
        if (end < 0) {
            return false;
        }
        answer.head = m_received.left(end);
        const qsizetype size = answer.header("Content-Length").toLongLong();
        if (m_received.size() < end + gapBytes + size) {
            return false;
        }
        answer.status = answer.head.split(' ').value(1).toInt();
        answer.body = m_received.mid(end + gapBytes, size);
        m_received.remove(0, end + gapBytes + size);
        return true;
    }

    QByteArray m_received;
    bool m_reads = true;
    QTcpSocket m_socket; ///< Goes first, as it calls `read`.
};
