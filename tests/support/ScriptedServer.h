// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

#include <map>
#include <utility>

/// A server on the loopback that takes one HTTP request a connection, and answers it, or does not,
/// as it was told. Knows just enough of HTTP for that.
class ScriptedServer : public QTcpServer
{
public:
    enum class Manner
    {
        Answer,
        CutRequest, ///< Closes as soon as some of the request's body is there.
        CutAnswer,  ///< Closes in the middle of the answer's body.
        StandStill, ///< Takes the request, or its beginning, and nothing more happens.
    };

    struct Script
    {
        Manner manner = Manner::Answer;
        int status = 200;
        QByteArray headers = {}; ///< Further ones, each with its line end.
        QByteArray body = {};
    };

    struct Request
    {
        QByteArray head; ///< From the request line to the last header.
        QByteArray body;

        QByteArray firstLine() const { return head.left(head.indexOf("\r\n")); }

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

    ScriptedServer() { listen(QHostAddress::LocalHost); }

    QUrl url(const QString& path) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(serverPort()).arg(path));
    }

    Script script;
    QList<Request> requests; ///< Those that came in whole.

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto* socket = new QTcpSocket(this);
        socket->setSocketDescriptor(descriptor);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(*socket); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }

private:
    void read(QTcpSocket& socket)
    {
        QByteArray& bytes = m_received[&socket];
        bytes += socket.readAll();
        const qsizetype end = bytes.indexOf("\r\n\r\n");
        if (end < 0) {
            return;
        }
        constexpr qsizetype gapBytes = 4;
        Request request{.head = bytes.left(end), .body = bytes.mid(end + gapBytes)};
        if (script.manner == Manner::CutRequest && !request.body.isEmpty()) {
            socket.abort();
        } else if (request.body.size() >= request.header("Content-Length").toLongLong()) {
            bytes.clear();
            requests << std::move(request);
            answer(socket);
        }
    }

    void answer(QTcpSocket& socket)
    {
        if (script.manner == Manner::StandStill) {
            return;
        }
        QByteArray length = QByteArray::number(script.body.size());
        socket.write("HTTP/1.1 " + QByteArray::number(script.status) + " Scripted\r\n" +
                     "Content-Length: " + length + "\r\nConnection: close\r\n" + script.headers +
                     "\r\n");
        const bool cut = script.manner == Manner::CutAnswer;
        socket.write(cut ? script.body.left(script.body.size() / 2) : script.body);
        socket.disconnectFromHost();
    }

    std::map<QTcpSocket*, QByteArray> m_received;
};
