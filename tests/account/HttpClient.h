// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "WireServer.h"
#include "account/tHTTP.h"
#include "support/Waiting.h"

#include <QSignalSpy>
#include <QVariantMap>

#include <memory>

inline const QByteArray Fine = WireServer::reply(R"({"status":200})");

inline void answerFine(QTcpSocket& client, const QByteArray&)
{
    client.write(Fine);
}

inline void stayStill(QTcpSocket&, const QByteArray&) {}

/// One request and what it told.
class HttpClient
{
public:
    explicit HttpClient(const QString& url)
        : http(std::make_unique<tHTTP>(url))
        , responses(http.get(), &tHTTP::response)
        , errors(http.get(), &tHTTP::errorOccurred)
    {
    }

    /// False where not exactly one signal came, or more than that followed.
    bool finishes()
    {
        return comesTrue([this] { return signalCount() > 0; }) && !another();
    }

    bool another()
    {
        const qsizetype before = signalCount();
        QTest::qWait(30);
        return signalCount() != before;
    }

    qsizetype signalCount() const { return responses.size() + errors.size(); }

    QString error() const { return errors.value(0).value(0).toString(); }

    QVariantMap response() const { return responses.value(0).value(0).toMap(); }

    std::unique_ptr<tHTTP> http;
    QSignalSpy responses;
    QSignalSpy errors;
};

inline QByteArray chunked(const QByteArray& content)
{
    return "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" +
           QByteArray::number(content.size(), 16) + "\r\n" + content + "\r\n0\r\n\r\n";
}

/// The content under the name that HTTP has for a zlib stream.
inline QByteArray deflated(const QByteArray& content)
{
    constexpr qsizetype qtHeader = 4;
    return WireServer::reply(qCompress(content, 1).sliced(qtHeader), "200 OK",
                             "Content-Encoding: deflate\r\n");
}
