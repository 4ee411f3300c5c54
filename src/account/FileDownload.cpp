// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/FileDownload.h"

#include "account/TlsTrust.h"
#include "storage/DatabaseFiles.h"

#include <QLocale>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslError>

#include <utility>

namespace {

constexpr int StatusOk = 200;
constexpr int StatusNotModified = 304;

/// Bytes that may wait in memory for the disk.
constexpr qint64 BufferBytes = qint64{1} << 20;

/// See RFC 9110, section 5.6.7.
QByteArray httpDate(const QDateTime& time)
{
    return QLocale::c()
        .toString(time.toUTC(), QStringLiteral("ddd, dd MMM yyyy hh:mm:ss 'GMT'"))
        .toLatin1();
}

int statusOf(const QNetworkReply& reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

QString refusal(int status)
{
    return FileDownload::tr("The server answered with the status %1.").arg(status);
}

} // namespace

FileDownload::FileDownload(QObject* parent, std::chrono::milliseconds stallTimeout)
    : QObject(parent)
    , m_stallTimeout(stallTimeout)
{
}

FileDownload::~FileDownload()
{
    if (m_reply != nullptr) {
        m_reply->disconnect(this);
        m_file.close();
        m_file.remove();
    }
}

bool FileDownload::start(const Request& request)
{
    if (isRunning()) {
        return false;
    }
    m_request = request;
    m_lastModified = {};
    m_length = -1;
    m_file.setFileName(request.path);
    QNetworkRequest wanted(request.url);
    wanted.setSslConfiguration(TlsTrust::configuration());
    wanted.setTransferTimeout(static_cast<int>(m_stallTimeout.count()));
    // As it lies there: what is packed on the way could unpack to any size.
    wanted.setRawHeader("Accept-Encoding", "identity");
    if (request.ifModifiedSince.isValid()) {
        wanted.setRawHeader("If-Modified-Since", httpDate(request.ifModifiedSince));
    }
    m_manager = new QNetworkAccessManager(this);
    m_reply = m_manager->get(wanted);
    m_reply->setReadBufferSize(BufferBytes);
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &FileDownload::takeHeaders);
    connect(m_reply, &QNetworkReply::readyRead, this, &FileDownload::takeBytes);
    connect(m_reply, &QNetworkReply::finished, this, &FileDownload::takeEnd);
    return true;
}

void FileDownload::cancel()
{
    if (isRunning()) {
        giveUp(Result::Cancelled, {});
    }
}

bool FileDownload::isAccepted() const
{
    return m_reply != nullptr && statusOf(*m_reply) == StatusOk;
}

/// Refuses a file that is too long before any of it is there.
void FileDownload::takeHeaders()
{
    const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
    m_length = length.isValid() ? length.toLongLong() : -1;
    if (isAccepted() && m_length > m_request.mostBytes) {
        giveUp(Result::Refused, tr("The file is larger than it should be."));
    }
}

void FileDownload::takeBytes()
{
    if (!isAccepted()) {
        return;
    }
    if (!m_file.isOpen() && (!DatabaseFiles::createEmpty(m_file.fileName()) ||
                             !m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))) {
        giveUp(Result::Failed, tr("%1 cannot be written.").arg(m_file.fileName()));
        return;
    }
    const QByteArray bytes = m_reply->readAll();
    if (m_file.size() + bytes.size() > m_request.mostBytes) {
        giveUp(Result::Refused, tr("The file is larger than it should be."));
        return;
    }
    if (m_file.write(bytes) != bytes.size()) {
        giveUp(Result::Failed, m_file.errorString());
        return;
    }
    Q_EMIT progress(m_file.size(), m_length);
}

void FileDownload::giveUp(Result result, const QString& message)
{
    m_reply->disconnect(this);
    m_reply->abort();
    end(result, message);
}

void FileDownload::takeEnd()
{
    const int status = statusOf(*m_reply);
    if (m_reply->error() != QNetworkReply::NoError) {
        // A status stands for an answer, unless the connection broke behind it. Of an answer Qt's
        // text quotes the whole address, with what may be a right to read in it.
        const bool answered = status != 0 && status != StatusOk;
        end(answered ? Result::Refused : Result::Failed,
            answered ? refusal(status) : m_reply->errorString());
        return;
    }
    if (status == StatusNotModified) {
        end(Result::NotModified, {});
        return;
    }
    if (status != StatusOk) {
        end(Result::Refused, refusal(status));
        return;
    }
    takeBytes(); // An empty file, at least, has to be made yet.
    if (m_reply == nullptr) {
        return;
    }
    // Qt does not always notice.
    if (m_length >= 0 && m_file.size() != m_length) {
        end(Result::Failed, tr("The connection was closed before the file was complete."));
        return;
    }
    m_lastModified = m_reply->header(QNetworkRequest::LastModifiedHeader).toDateTime();
    end(Result::Done, {});
}

void FileDownload::end(Result result, const QString& message)
{
    m_file.close();
    if (result != Result::Done) {
        m_file.remove();
    }
    m_reply = nullptr;
    std::exchange(m_manager, nullptr)->deleteLater();
    Q_EMIT finished(result, message);
}
