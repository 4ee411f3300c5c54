// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DatabaseFiles.h"

#include "base/Log.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

constexpr mode_t PrivateMode = S_IRUSR | S_IWUSR;

/// https://sqlite.org/fileformat2.html, section 1.3.
constexpr int HeaderBytes = 100;

QString reason()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

bool canWrite(const QString& path)
{
    return ::faccessat(AT_FDCWD, QFile::encodeName(path).constData(), W_OK, AT_EACCESS) == 0;
}

bool rename(const QString& from, const QString& to)
{
    return ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

/// Gives `from` the further name `to`, or that name alone where the file system has no hard links
/// or `from` is no file. Never overwrites.
bool linkOrMove(const QString& from, const QString& to)
{
    if (::link(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0) {
        return true;
    }
    return !QFileInfo::exists(to) && rename(from, to);
}

bool copyContent(QFile& source, QFile& target)
{
    constexpr qint64 chunkBytes = Q_INT64_C(1) << 20;
    while (!source.atEnd()) {
        const QByteArray chunk = source.read(chunkBytes);
        if (chunk.isEmpty() || target.write(chunk) != chunk.size()) {
            return false;
        }
    }
    return target.flush();
}

/// Files that SQLite keeps beside a database and would apply to whatever bears its name.
const std::array<QString, 3>& companionSuffixes()
{
    static const std::array suffixes{QStringLiteral("-journal"), QStringLiteral("-wal"),
                                     QStringLiteral("-shm")};
    return suffixes;
}

/// What SQLite kept beside the database `from` is from now on beside `to`.
void moveCompanions(const QString& from, const QString& to)
{
    for (const QString& suffix : companionSuffixes()) {
        rename(from + suffix, to + suffix);
    }
}

/// Whether both names lead to one file.
bool areOneFile(const QString& one, const QString& other)
{
    struct stat first = {};
    struct stat second = {};
    return ::stat(QFile::encodeName(one).constData(), &first) == 0 &&
           ::stat(QFile::encodeName(other).constData(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

} // namespace

DatabaseFiles::DatabaseFiles(const QString& fileName)
    : m_fileName(fileName)
{
}

const QString& DatabaseFiles::fileName() const
{
    return m_fileName;
}

QString DatabaseFiles::backupFileName() const
{
    return m_fileName + QStringLiteral(".backup");
}

QString DatabaseFiles::copyFileName(int version) const
{
    return m_fileName + QStringLiteral(".v") + QString::number(version);
}

QString DatabaseFiles::directory() const
{
    return QFileInfo(m_fileName).absolutePath();
}

DatabaseFiles::Kind DatabaseFiles::kind() const
{
    const QFileInfo file(m_fileName);
    if (!file.exists()) {
        return file.isSymLink() ? Kind::Other : Kind::Missing;
    }
    if (!file.isFile()) {
        return Kind::Other;
    }
    if (file.size() == 0) {
        return Kind::Empty;
    }
    return file.size() < HeaderBytes ? Kind::Stub : Kind::Regular;
}

bool DatabaseFiles::hasBackup() const
{
    const QFileInfo file(backupFileName());
    return file.isFile() && file.size() > 0;
}

DatabaseFiles::Access DatabaseFiles::access() const
{
    if (kind() == Kind::Missing) {
        return Access::ReadWrite;
    }
    // Truncated after each transaction, not deleted, the journal may be there already.
    const bool canWriteJournal =
        canWrite(directory()) || canWrite(m_fileName + companionSuffixes().front());
    return canWrite(m_fileName) && canWriteJournal ? Access::ReadWrite : Access::ReadOnly;
}

std::optional<int> DatabaseFiles::storedVersion() const
{
    // The header begins with a magic string and holds the user version, big-endian, at offset 60.
    constexpr int versionOffset = 60;
    static const QByteArray magic("SQLite format 3", 16);
    if (QFileInfo(m_fileName + companionSuffixes().front()).size() > 0) {
        return std::nullopt;
    }
    QFile file(m_fileName);
    if (kind() != Kind::Regular || !file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray header = file.read(HeaderBytes);
    if (header.size() < HeaderBytes || !header.startsWith(magic)) {
        return std::nullopt;
    }
    return qFromBigEndian<qint32>(header.constData() + versionOffset);
}

bool DatabaseFiles::makePrivate() const
{
    if (kind() == Kind::Missing) {
        return createEmpty(m_fileName);
    }
    return ::chmod(QFile::encodeName(m_fileName).constData(), PrivateMode) == 0;
}

bool DatabaseFiles::createEmpty(const QString& path)
{
    const int descriptor =
        ::open(QFile::encodeName(path).constData(),
               O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, PrivateMode);
    if (descriptor < 0) {
        return false;
    }
    const bool ok = ::fchmod(descriptor, PrivateMode) == 0;
    ::close(descriptor);
    return ok;
}

std::optional<QString> DatabaseFiles::copy(const QString& source, const QString& target)
{
    // A fixed temporary name, so that a copy cut short is overwritten by the next one.
    const QString part = target + QStringLiteral(".part");
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly)) {
        return in.errorString();
    }
    if (!createEmpty(part)) {
        return reason();
    }
    QFile out(part);
    const bool copied = out.open(QIODevice::WriteOnly) && copyContent(in, out);
    const QString failure =
        out.error() != QFileDevice::NoError ? out.errorString() : in.errorString();
    out.close();
    if (!copied) {
        QFile::remove(part);
        return failure;
    }
    if (!replace(part, target)) {
        const QString why = reason();
        QFile::remove(part);
        return why;
    }
    return std::nullopt;
}

bool DatabaseFiles::syncToDisk(const QString& path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool ok = ::fsync(descriptor) == 0;
    ::close(descriptor);
    return ok;
}

bool DatabaseFiles::replace(const QString& source, const QString& target)
{
    if (!syncToDisk(source) || !rename(source, target)) {
        return false;
    }
    // Not every file system can do this for a directory; the new name then reaches the disk later.
    syncToDisk(QFileInfo(target).absolutePath());
    return true;
}

QString DatabaseFiles::datedName(const QString& path)
{
    const QString stem = path + QLatin1Char('-') +
                         QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString name = stem;
    for (int number = 2; QFileInfo::exists(name); ++number) {
        name = stem + QLatin1Char('-') + QString::number(number);
    }
    return name;
}

std::optional<QString> DatabaseFiles::keepDamaged() const
{
    const QString kept = datedName(m_fileName + QStringLiteral(".damaged"));
    if (!linkOrMove(m_fileName, kept)) {
        Log::error("Unable to keep {} as {}: {}", m_fileName, kept, reason());
        return std::nullopt;
    }
    for (const QString& suffix : companionSuffixes()) {
        if (QFileInfo::exists(m_fileName + suffix) && !rename(m_fileName + suffix, kept + suffix)) {
            Log::error("Unable to keep {}: {}", m_fileName + suffix, reason());
            return std::nullopt;
        }
    }
    Log::warn("Kept the damaged database as: {}", kept);
    return kept;
}

bool DatabaseFiles::keepBackup() const
{
    if (!QFileInfo::exists(backupFileName())) {
        return true;
    }
    const QString kept = datedName(backupFileName());
    if (!rename(backupFileName(), kept)) {
        Log::error("Unable to keep {} as {}: {}", backupFileName(), kept, reason());
        return false;
    }
    Log::warn("Kept the database backup as: {}", kept);
    return true;
}

QString DatabaseFiles::damageMarkName() const
{
    return m_fileName + QStringLiteral(".damage-found");
}

bool DatabaseFiles::isMarkedDamaged() const
{
    return QFileInfo::exists(damageMarkName());
}

bool DatabaseFiles::markDamaged() const
{
    return createEmpty(damageMarkName());
}

void DatabaseFiles::unmarkDamaged() const
{
    QFile::remove(damageMarkName());
}

QString DatabaseFiles::replacedFileName() const
{
    return directory() + QLatin1Char('/') + ReplacedName;
}

/// Gives the database a second name. The journal goes with it: left by a crash, SQLite would roll
/// it back into whatever file bears its name.
bool DatabaseFiles::keepReplaced() const
{
    const QString kept = replacedFileName();
    if (areOneFile(m_fileName, kept)) {
        moveCompanions(m_fileName, kept); // The end of an attempt that was cut short.
        return true;
    }
    if (QFileInfo::exists(kept)) {
        const QString older = datedName(kept);
        moveCompanions(kept, older);
        if (!rename(kept, older)) {
            moveCompanions(older, kept);
            return false;
        }
    }
    // Before the database: where it cannot have two names, nothing may be left beside the first.
    moveCompanions(m_fileName, kept);
    if (!linkOrMove(m_fileName, kept)) {
        moveCompanions(kept, m_fileName);
        return false;
    }
    return true;
}

void DatabaseFiles::takeBackReplaced() const
{
    const QString kept = replacedFileName();
    moveCompanions(kept, m_fileName);
    if (areOneFile(m_fileName, kept)) {
        QFile::remove(kept);
    } else {
        rename(kept, m_fileName);
    }
}

bool DatabaseFiles::replaceBy(const QString& file) const
{
    switch (kind()) {
    case Kind::Other:
        errno = EISDIR;
        return false;
    case Kind::Missing:
        for (const QString& suffix : companionSuffixes()) {
            QFile::remove(m_fileName + suffix);
        }
        return replace(file, m_fileName);
    default:
        break;
    }
    if (!keepReplaced()) {
        return false;
    }
    const bool replaced = replace(file, m_fileName);
    if (!replaced) {
        takeBackReplaced();
    }
    return replaced;
}

void DatabaseFiles::remove() const
{
    QFile::remove(m_fileName);
    for (const QString& suffix : companionSuffixes()) {
        QFile::remove(m_fileName + suffix);
    }
}

bool DatabaseFiles::startEmpty() const
{
    const QString part = m_fileName + QStringLiteral(".part");
    return createEmpty(part) && replace(part, m_fileName);
}
