// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DatabaseArchive.h"

#include "storage/DatabaseFiles.h"
#include "storage/DiskSpace.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <quazip/quazip.h>
#include <quazip/quazipfile.h>
#include <quazip/quazipnewinfo.h>

#include <sys/stat.h>
#include <zlib.h>

namespace DatabaseArchive {

namespace {

constexpr qint64 ChunkBytes = Q_INT64_C(256) << 10;

QString cannotWrite(const QFile& file)
{
    return QCoreApplication::translate("DatabaseArchive", "%1 cannot be written")
        .arg(file.fileName());
}

/// Opens a new file, mode 0600. Unbuffered, so that a full disk shows with the write that meets it,
/// and not when the file is closed, where nobody looks.
bool openNew(QFile& file)
{
    return DatabaseFiles::createEmpty(file.fileName()) &&
           file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

enum class Pumped
{
    Done,
    Abandoned,
    ReadFailed, ///< Or the source fell short of its size.
    WriteFailed,
};

/// Copies `total` bytes, in pieces.
Pumped pump(QIODevice& from, QIODevice& to, qint64 total, const FileProgress& progress)
{
    QByteArray chunk(ChunkBytes, Qt::Uninitialized);
    qint64 done = 0;
    while (done < total) {
        const qint64 read = from.read(chunk.data(), ChunkBytes);
        if (read <= 0) {
            return Pumped::ReadFailed;
        }
        if (to.write(chunk.constData(), read) != read) {
            return Pumped::WriteFailed;
        }
        done += read;
        if (!progress(done, total)) {
            return Pumped::Abandoned;
        }
    }
    return Pumped::Done;
}

FileWork packInto(QFile& archive, QFile& source, const QString& entryName,
                  const FileProgress& progress)
{
    const QString failure = cannotWrite(archive);
    QuaZip zip(&archive);
    zip.setZip64Enabled(true); // Sizes beyond 4 GiB.
    if (!zip.open(QuaZip::mdCreate)) {
        return FileWork::failed(failure);
    }
    QuaZipFile entry(&zip);
    QuaZipNewInfo info(entryName, source.fileName());
    info.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    // The levels above pack a tenth more in three times the time.
    if (!entry.open(QIODevice::WriteOnly, info, nullptr, 0, Z_DEFLATED, Z_BEST_SPEED)) {
        return FileWork::failed(failure);
    }
    const QString directory = QFileInfo(archive.fileName()).absolutePath();
    bool hasSpace = true;
    const Pumped pumped = pump(source, entry, source.size(), [&](qint64 done, qint64 total) {
        hasSpace = DiskSpace::usable(directory) > 0; // How large it gets, nobody knows before.
        return hasSpace && progress(done, total);
    });
    entry.close();
    zip.close();
    if (!hasSpace) {
        return FileWork::failed(
            QCoreApplication::translate("DatabaseArchive", "There is not enough free disk space."));
    }
    if (pumped == Pumped::Abandoned) {
        return FileWork::abandoned();
    }
    if (pumped == Pumped::ReadFailed) {
        return FileWork::failed(source.errorString());
    }
    return pumped == Pumped::Done && entry.getZipError() == ZIP_OK && zip.getZipError() == ZIP_OK
               ? FileWork::done()
               : FileWork::failed(failure);
}

/// Whether the entry is a file that lies in the archive's own directory.
bool isPlainFile(const QuaZipFileInfo64& entry)
{
    // The upper half of the attributes is the mode that the file has on Unix; 0 where the archive
    // was made elsewhere (APPNOTE.TXT, section 4.4.15).
    constexpr int modeShift = 16;
    const quint32 type = (entry.externalAttr >> modeShift) & S_IFMT;
    return (type == 0 || type == S_IFREG) && !entry.name.isEmpty() &&
           !entry.name.contains(QLatin1Char('/')) && !entry.name.contains(QLatin1Char('\\')) &&
           !entry.name.contains(QChar(u'\0')) && entry.name != QLatin1String("..");
}

bool isSuspicious(const QuaZipFileInfo64& entry)
{
    return entry.uncompressedSize > static_cast<quint64>(SmallBytes) &&
           entry.uncompressedSize / MostBytesPerPackedByte > entry.compressedSize;
}

/// What is wrong with the archive, from its directory alone; `Done` where nothing is.
Unpacked inspect(QuaZip& zip, QuaZipFileInfo64& entry, qint64 mostBytes)
{
    if (!zip.open(QuaZip::mdUnzip)) {
        return Unpacked::NoArchive;
    }
    if (zip.getEntriesCount() != 1) {
        return Unpacked::NotOneFile;
    }
    if (!zip.goToFirstFile() || !zip.getCurrentFileInfo(&entry)) {
        return Unpacked::NoArchive;
    }
    if (!isPlainFile(entry)) {
        return Unpacked::NotOneFile;
    }
    if (entry.isEncrypted()) {
        return Unpacked::Unsupported;
    }
    if (isSuspicious(entry)) {
        return Unpacked::Suspicious;
    }
    if (entry.uncompressedSize > static_cast<quint64>(mostBytes)) {
        return Unpacked::NoSpace;
    }
    return Unpacked::Done;
}

Unpacked unpackEntry(QuaZip& zip, const QuaZipFileInfo64& info, QFile& target,
                     const FileProgress& progress)
{
    QuaZipFile entry(&zip);
    if (!entry.open(QIODevice::ReadOnly)) {
        return Unpacked::Damaged;
    }
    if (!openNew(target)) {
        return Unpacked::WriteFailed;
    }
    // The library hands out no more bytes than the directory says there are.
    const Pumped pumped = pump(entry, target, static_cast<qint64>(info.uncompressedSize), progress);
    if (pumped == Pumped::Abandoned) {
        return Unpacked::Abandoned;
    }
    if (pumped == Pumped::WriteFailed) {
        return Unpacked::WriteFailed;
    }
    entry.close(); // Compares the checksum.
    return pumped == Pumped::Done && entry.getZipError() == UNZ_OK ? Unpacked::Done
                                                                   : Unpacked::Damaged;
}

} // namespace

FileWork pack(const QString& source, const QString& archive, const QString& entryName,
              const FileProgress& progress)
{
    QFile from(source);
    if (!from.open(QIODevice::ReadOnly)) {
        return FileWork::failed(from.errorString());
    }
    QFile to(archive);
    if (!openNew(to)) {
        return FileWork::failed(cannotWrite(to));
    }
    FileWork work = packInto(to, from, entryName, progress);
    if (!work.isDone()) {
        QFile::remove(archive);
    }
    return work;
}

Unpacked unpack(const QString& archive, const QString& target, qint64 mostBytes,
                const FileProgress& progress)
{
    QFile from(archive);
    QuaZip zip(&from);
    QuaZipFileInfo64 entry;
    Unpacked end = inspect(zip, entry, mostBytes);
    if (end != Unpacked::Done) {
        return end;
    }
    QFile to(target);
    end = unpackEntry(zip, entry, to, progress);
    if (end != Unpacked::Done) {
        QFile::remove(target);
    }
    return end;
}

} // namespace DatabaseArchive
