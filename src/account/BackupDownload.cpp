// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/BackupDownload.h"

#include "base/Log.h"
#include "storage/DatabaseFiles.h"
#include "storage/DiskSpace.h"

#include <algorithm>

namespace {

/// The service answers within seconds, or not at all.
constexpr auto LongestWaitForAddress = std::chrono::minutes(5);

/// Far beyond what decades of counting fill; a disk may have more room than that.
constexpr qint64 MostBytes = qint64{16} << 30;

} // namespace

BackupDownload::BackupDownload(const QString& dataDirectory, QObject* parent,
                               std::chrono::milliseconds stallTimeout)
    : QObject(parent)
    , m_directory(dataDirectory)
    , m_archive(dataDirectory + QLatin1Char('/') + DatabaseFiles::RestoreArchiveName)
    , m_download(nullptr, stallTimeout)
{
    m_addressTimer.setSingleShot(true);
    m_addressTimer.setInterval(LongestWaitForAddress);
    connect(&m_addressTimer, &QTimer::timeout, this,
            [this] { giveUpAddress(Outcome::Failed, tr("The account service did not answer.")); });
    connect(&m_download, &FileDownload::progress, this, &BackupDownload::progress);
    connect(&m_download, &FileDownload::finished, this, &BackupDownload::takeEnd);
}

bool BackupDownload::start(const QString& fileName)
{
    if (isRunning()) {
        return false;
    }
    Log::info("Asking for the database backup: {}", fileName);
    m_stage = Stage::WaitingForAddress;
    m_addressTimer.start();
    Q_EMIT signalNeedDownloadURL(fileName);
    return true;
}

void BackupDownload::cancel()
{
    if (m_stage == Stage::WaitingForAddress) {
        giveUpAddress(Outcome::Cancelled, {});
    } else {
        m_download.cancel();
    }
}

/// The answer still comes, and is not to be taken for that of the next backup.
void BackupDownload::giveUpAddress(Outcome outcome, const QString& message)
{
    ++m_unwantedAnswers;
    end(outcome, message);
}

void BackupDownload::refuse(const QString& message)
{
    if (m_stage == Stage::WaitingForAddress) {
        end(Outcome::Failed, message);
    }
}

void BackupDownload::processGetDatabaseBackupDownloadURL(const QString& requestType, int status,
                                                         const QMap<QString, QVariant>& data,
                                                         const QString& message)
{
    constexpr int ok = 200;
    if (requestType != QLatin1String("get_db_backup_download_url")) {
        return;
    }
    if (m_unwantedAnswers > 0) {
        --m_unwantedAnswers;
        return;
    }
    if (m_stage != Stage::WaitingForAddress) {
        return;
    }
    if (status != ok) {
        end(Outcome::Failed, message);
        return;
    }
    const QUrl url(data.value(QStringLiteral("url")).toString(), QUrl::StrictMode);
    const QString scheme = url.scheme();
    if (url.host().isEmpty() ||
        (scheme != QLatin1String("https") && scheme != QLatin1String("http"))) {
        end(Outcome::Failed,
            tr("The account service gave no address to download the backup from."));
        return;
    }
    m_addressTimer.stop();
    m_stage = Stage::Downloading;
    // What follows the path may be a right to read, which is nobody else's.
    Log::info("Downloading database backup: {} to: {}",
              url.toString(QUrl::RemoveUserInfo | QUrl::RemoveQuery), m_archive);
    m_download.start({.url = url,
                      .path = m_archive,
                      .mostBytes = std::min(MostBytes, DiskSpace::usable(m_directory))});
}

void BackupDownload::takeEnd(FileDownload::Result result, const QString& message)
{
    switch (result) {
    case FileDownload::Result::Done:
        end(Outcome::Done, {});
        return;
    case FileDownload::Result::Cancelled:
        end(Outcome::Cancelled, {});
        return;
    case FileDownload::Result::NotModified: // Never asked for.
    case FileDownload::Result::Refused:
    case FileDownload::Result::Failed:
        end(Outcome::Failed, message);
    }
}

void BackupDownload::end(Outcome outcome, const QString& message)
{
    m_addressTimer.stop();
    m_stage = Stage::Idle;
    if (outcome == Outcome::Failed) {
        Log::error("Unable to download the database backup: {}", message);
    }
    Q_EMIT finished(outcome, message);
}
