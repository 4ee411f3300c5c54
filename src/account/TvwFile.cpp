// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/TvwFile.h"

#include "account/Aes.h"
#include "base/Log.h"
#include "storage/DatabaseFiles.h"

#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

namespace {

/// Far beyond what the counts of any number of applications take; keeps a file that is something
/// else entirely from being read into memory.
constexpr qint64 LargestFile = 64LL * 1024 * 1024;

QString describe(Tvw::Fault fault)
{
    switch (fault) {
    case Tvw::Fault::Truncated:
        return QStringLiteral("it is cut short");
    case Tvw::Fault::Foreign:
        return QStringLiteral("it is some other kind of file");
    case Tvw::Fault::UnknownVersion:
        return QStringLiteral("another version of the program wrote it");
    case Tvw::Fault::Sealed:
        return QStringLiteral("it was changed or damaged, or comes from another machine");
    case Tvw::Fault::Payload:
        return QStringLiteral("its content makes no sense");
    case Tvw::Fault::Unavailable:
        return QStringLiteral("decryption is not available");
    case Tvw::Fault::None:
        break;
    }
    return {};
}

} // namespace

QByteArray systemMachineId()
{
    return QSysInfo::machineUniqueId();
}

TvwFile::TvwFile(const QString& directory, MachineIdSource machineId)
    : m_path(directory + QLatin1Char('/') + FileName)
    , m_machineId(std::move(machineId))
{
}

std::optional<TvwContent> TvwFile::load()
{
    m_replaceable = !exists();
    if (m_replaceable) {
        return std::nullopt;
    }
    const std::optional<QByteArray> bytes = read();
    if (!bytes) {
        return std::nullopt;
    }
    Tvw::Decoded decoded = Tvw::decode(*bytes, m_machineId());
    if (decoded.fault == Tvw::Fault::Unavailable) {
        Log::warn(
            "Unable to use {}: {}. It stays as it is, and the counts are kept in the database.",
            m_path, describe(decoded.fault));
        return std::nullopt;
    }
    if (decoded.fault != Tvw::Fault::None) {
        moveAside(describe(decoded.fault));
        return std::nullopt;
    }
    m_replaceable = true;
    m_salt = decoded.salt;
    return std::move(decoded.content);
}

std::optional<QByteArray> TvwFile::read()
{
    QFile file(m_path);
    const bool regular = QFileInfo(m_path).isFile();
    if (regular && file.size() > LargestFile) {
        moveAside(describe(Tvw::Fault::Foreign));
        return std::nullopt;
    }
    // Only a regular file: opening a pipe would wait for whoever writes to it.
    QByteArray bytes;
    if (regular && file.open(QIODevice::ReadOnly)) {
        bytes = file.readAll();
    }
    if (!regular || !file.isOpen() || file.error() != QFileDevice::NoError) {
        Log::warn(
            "Unable to read {}: {}. It stays as it is, and the counts are kept in the database.",
            m_path, regular ? file.errorString() : QStringLiteral("it is not a file"));
        return std::nullopt;
    }
    return bytes;
}

void TvwFile::moveAside(const QString& reason)
{
    const QString aside = DatabaseFiles::datedName(m_path + QStringLiteral(".damaged"));
    m_replaceable = QFile::rename(m_path, aside);
    if (m_replaceable) {
        Log::warn(
            "Unable to use {}: {}. It was moved to {}, the counts come from the database, and an "
            "account has to be linked again.",
            m_path, reason, aside);
    } else {
        Log::warn(
            "Unable to use {}: {}. It cannot be moved aside either, so it stays as it is, and "
            "the counts are kept in the database.",
            m_path, reason);
    }
}

bool TvwFile::save(const TvwContent& content)
{
    if (!m_replaceable) {
        Log::warn("Not saving over {}, which could not be used", m_path);
        return false;
    }
    if (m_salt.isEmpty()) {
        m_salt = Aes::randomBytes(Tvw::SaltSize).value_or(QByteArray());
    }
    const auto bytes =
        m_salt.isEmpty() ? std::nullopt : Tvw::encode(content, m_salt, m_machineId());
    if (!bytes) {
        Log::error("Unable to encrypt {}", m_path);
        return false;
    }
    return write(*bytes);
}

/// Not by QSaveFile, which puts a cut file in place where the disk turns out to be full only as the
/// content is forced onto it, and leaves the new name to reach the disk some time later.
bool TvwFile::write(const QByteArray& bytes) const
{
    const QString part = m_path + QStringLiteral(".part");
    QFile file(part);
    if (!DatabaseFiles::createEmpty(part) || !file.open(QIODevice::WriteOnly) ||
        file.write(bytes) != bytes.size() || !file.flush()) {
        Log::error("Unable to write {}: {}", part, qt_error_string());
        QFile::remove(part);
        return false;
    }
    file.close();
    if (!DatabaseFiles::replace(part, m_path)) {
        Log::error("Unable to replace {}: {}", m_path, qt_error_string());
        QFile::remove(part);
        return false;
    }
    return true;
}

bool TvwFile::exists() const
{
    const QFileInfo info(m_path);
    return info.exists() || info.isSymLink();
}
