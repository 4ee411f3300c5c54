// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QFile>
#include <QObject>
#include <QString>
#include <QUrl>

#include <chrono>

class QNetworkAccessManager;
class QNetworkReply;

/// Fetches one file over HTTP as it is, and writes it to the disk as it comes in. Each download
/// ends in one `finished`, unless the object goes first; only after a `Done` is there a file at
/// `path`. Thread: main.
class FileDownload : public QObject
{
    Q_OBJECT

public:
    enum class Result
    {
        Done,
        NotModified, ///< The server's file is no younger than the caller's.
        Cancelled,   ///< By `cancel`.
        Refused,     ///< The server answered, but not with a file that may be taken.
        Failed,      ///< There was no answer, or it ended early, or could not be written.
    };
    Q_ENUM(Result)

    struct Request
    {
        QUrl url;
        QString path;                   ///< Where to; mode 0600, overwritten.
        qint64 mostBytes = 0;           ///< A longer file is refused.
        QDateTime ifModifiedSince = {}; ///< Invalid: whatever its age.
    };

    /// How long a server may stand still before it is given up.
    static constexpr std::chrono::milliseconds StallTimeout = std::chrono::minutes(1);

    explicit FileDownload(QObject* parent = nullptr,
                          std::chrono::milliseconds stallTimeout = StallTimeout);
    ~FileDownload() override;

    /// False, and nothing begins, while another is under way.
    bool start(const Request& request);
    void cancel();

    bool isRunning() const { return m_reply != nullptr; }

    /// What the server said of the last file's age; invalid where it did not.
    QDateTime lastModified() const { return m_lastModified; }

Q_SIGNALS:
    void progress(qint64 received, qint64 total); ///< Bytes; total -1: unknown.
    void finished(FileDownload::Result result, const QString& message); ///< Empty unless it failed.

private:
    void takeHeaders();
    void takeBytes();
    void giveUp(Result result, const QString& message);
    void takeEnd();
    void end(Result result, const QString& message);
    bool isAccepted() const;

    const std::chrono::milliseconds m_stallTimeout;
    QNetworkAccessManager* m_manager = nullptr; ///< Null between two downloads.
    QNetworkReply* m_reply = nullptr;           ///< Likewise; the manager's.
    Request m_request;
    QFile m_file;
    qint64 m_length = -1; ///< As the server says; -1 where it does not.
    QDateTime m_lastModified;
};
