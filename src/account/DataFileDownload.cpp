// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/DataFileDownload.h"

#include "base/Log.h"
#include "storage/DatabaseFiles.h"
#include "storage/Settings.h"

#include <QFileInfo>

#include <utility>

namespace {

/// Before a server that did not answer is asked again.
constexpr qint64 PauseAfterFailureMs = 3'600'000;

/// A name under a domain that no one can own (RFC 2606, RFC 6761) would only ever be looked up in
/// vain.
bool isReserved(const QUrl& address)
{
    const QString host = address.host();
    return host.isEmpty() || host.endsWith(QLatin1String(".example")) ||
           host.endsWith(QLatin1String(".invalid")) || host == QLatin1String("example");
}

} // namespace

DataFileDownload::DataFile DataFileDownload::DataFile::countryDatabase()
{
    constexpr qint64 mostBytes = qint64{256} << 20;
    return {.requestType = QStringLiteral("geoip_download"),
            .fileName = QStringLiteral("GeoIP.dat"),
            .mostBytes = mostBytes,
            .lastCheck = SettingsKeys::CheckForGeoipUpdateLast,
            .successLine = QStringLiteral("Successfully downloaded updated country database.")};
}

DataFileDownload::DataFile DataFileDownload::DataFile::portDescriptions()
{
    constexpr qint64 mostBytes = qint64{32} << 20;
    return {.requestType = QStringLiteral("download_networkportdescriptions"),
            .fileName = QStringLiteral("network-ports.csv"),
            .mostBytes = mostBytes,
            .lastCheck = SettingsKeys::CheckForNetworkPortDescriptionsLast,
            .successLine =
                QStringLiteral("Successfully downlaoded updated network port descriptions.")};
}

DataFileDownload::DataFileDownload(DataFile file, const QString& dataDirectory, Check check,
                                   Settings& settings, QObject* parent,
                                   std::chrono::milliseconds stallTimeout)
    : QObject(parent)
    , m_file(std::move(file))
    , m_path(dataDirectory + QLatin1Char('/') + m_file.fileName)
    , m_check(std::move(check))
    , m_settings(settings)
    , m_download(nullptr, stallTimeout)
{
    connect(&m_download, &FileDownload::progress, this, &DataFileDownload::progress);
    connect(&m_download, &FileDownload::finished, this, &DataFileDownload::takeEnd);
}

void DataFileDownload::setReleaseAddress(const QUrl& release)
{
    m_release = release;
}

bool DataFileDownload::isMissing() const
{
    return !QFileInfo::exists(m_path);
}

QString DataFileDownload::partFileName() const
{
    return m_path + QStringLiteral(".part");
}

bool DataFileDownload::isDue() const
{
    if (m_lastFailure.isValid() && !m_lastFailure.hasExpired(PauseAfterFailureMs)) {
        return false;
    }
    constexpr qint64 daySeconds = 86'400;
    const qint64 days = isMissing() ? DaysBetweenChecksWithoutFile : DaysBetweenChecks;
    const qint64 sinceCheck =
        QDateTime::currentSecsSinceEpoch() - m_settings.value(m_file.lastCheck);
    // A clock that was ahead once is not to keep the file old for years.
    return sinceCheck < 0 || sinceCheck >= days * daySeconds;
}

/// Why nothing can be fetched; empty where it can.
QString DataFileDownload::obstacle() const
{
    if (m_settings.value(SettingsKeys::WorkOffline)) {
        return tr("The setting \"Work Offline\" is enabled.");
    }
    return isReserved(m_release) ? tr("There is no address to download files from.") : QString();
}

void DataFileDownload::update(Trigger trigger, Asker asker)
{
    if (isRunning() || (trigger == Trigger::WhenDue && !isDue())) {
        return;
    }
    const QString reason = obstacle();
    if (!reason.isEmpty()) {
        if (asker == Asker::User) {
            fail(reason);
        }
        return;
    }
    const QUrl url(m_release.toString(QUrl::StripTrailingSlash) + QLatin1Char('/') +
                   m_file.fileName);
    Log::info("Looking for a newer file ({}): {}", m_file.requestType,
              url.toString(QUrl::RemoveUserInfo));
    m_download.start({.url = url,
                      .path = partFileName(),
                      .mostBytes = m_file.mostBytes,
                      .ifModifiedSince = QFileInfo(m_path).lastModified()});
}

void DataFileDownload::takeEnd(FileDownload::Result result, const QString& message)
{
    switch (result) {
    case FileDownload::Result::Done:
        takeFile();
        return;
    case FileDownload::Result::NotModified:
        Log::info("The file is up to date ({}).", m_file.requestType);
        noteCheck();
        Q_EMIT finished(m_file.requestType, false, {});
        return;
    case FileDownload::Result::Refused:
        noteCheck();
        fail(message);
        return;
    case FileDownload::Result::Cancelled:
        m_lastFailure.start();
        Q_EMIT finished(m_file.requestType, false, {});
        return;
    case FileDownload::Result::Failed:
        m_lastFailure.start();
        fail(message);
    }
}

void DataFileDownload::takeFile()
{
    noteCheck();
    const QString part = partFileName();
    if (const QString fault = m_check(part); !fault.isEmpty()) {
        QFile::remove(part);
        fail(tr("The downloaded file cannot be used: %1").arg(fault));
        return;
    }
    const QDateTime lastModified = m_download.lastModified();
    if (QFile file(part); lastModified.isValid() && file.open(QIODevice::ReadWrite)) {
        // What the server is asked with next time.
        file.setFileTime(lastModified, QFileDevice::FileModificationTime);
    }
    if (!DatabaseFiles::replace(part, m_path)) {
        QFile::remove(part);
        fail(tr("%1 cannot be written.").arg(m_path));
        return;
    }
    Log::info("{}", m_file.successLine);
    Q_EMIT finished(m_file.requestType, true, {});
}

void DataFileDownload::fail(const QString& message)
{
    Log::error("Unable to update {} ({}): {}", m_file.fileName, m_file.requestType, message);
    Q_EMIT finished(m_file.requestType, false, message);
}

void DataFileDownload::noteCheck()
{
    m_settings.setValue(m_file.lastCheck, QDateTime::currentSecsSinceEpoch());
}
