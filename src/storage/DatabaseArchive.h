// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/FileWork.h"

/// Zip archives that hold one file, a database. Any thread.
namespace DatabaseArchive {

/// An archive up to this size, unpacked, may be packed as tightly as it likes: a database with
/// little in it is mostly zeros.
constexpr qint64 SmallBytes = Q_INT64_C(64) << 20;

/// Beyond it, one packed byte may stand for so many. Counts hardly ever reach ten; the format's
/// limit is above a thousand.
constexpr quint64 MostBytesPerPackedByte = 100;

/// How the unpacking of an archive ended.
enum class Unpacked
{
    Done,
    Abandoned,   ///< Its progress said so.
    NoArchive,   ///< Not a zip archive, or cut short.
    NotOneFile,  ///< None, several, a directory, a link, or a name that leads elsewhere.
    Unsupported, ///< Encrypted.
    Suspicious,  ///< It would grow beyond what `MostBytesPerPackedByte` allows.
    NoSpace,     ///< More than the disk can take.
    Damaged,     ///< Its content is not what its checksum says.
    WriteFailed,
};

/// Packs the file `source` under the name `entryName` into a new archive, mode 0600, which
/// overwrites what was at `archive`. Unless it is done, no file is left there.
FileWork pack(const QString& source, const QString& archive, const QString& entryName,
              const FileProgress& progress);

/// Unpacks the one file in `archive` to `target`, mode 0600, which is overwritten, whatever its
/// name in the archive. The archive may hold anything; at most `mostBytes` are written. Unless it
/// is done, no file is left at `target`.
Unpacked unpack(const QString& archive, const QString& target, qint64 mostBytes,
                const FileProgress& progress);

} // namespace DatabaseArchive
