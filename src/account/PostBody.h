// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIODevice>

#include <memory>

/// The body of a request, or the file within one, that goes out once.
///
/// When a connection is lost before an answer, Qt connects again and sends the request again, a
/// POST too, without a word (Qt 6: `QHttpNetworkConnectionChannel`, "resend"). The service may have
/// acted on the first one by then. Before it sends again, Qt resets the body, and gives the request
/// up where that fails; so here it fails as soon as something was read.
class PostBody : public QIODevice
{
    Q_OBJECT

public:
    /// `source` is open, and neither grows nor shrinks in what counts here.
    explicit PostBody(std::unique_ptr<QIODevice> source, QObject* parent = nullptr);
    explicit PostBody(const QByteArray& content, QObject* parent = nullptr);
    ~PostBody() override;

    qint64 size() const override;
    bool reset() override;

    /// A proxy, not the service, has turned down what was sent so far: it may go out once more.
    void permitRestart();

protected:
    qint64 readData(char* data, qint64 longest) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    std::unique_ptr<QIODevice> m_source;
    qint64 m_size;
    bool m_mayRestart = false;
};
