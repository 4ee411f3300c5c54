// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/DatabaseArchive.h"
#include "support/TestFiles.h"

#include <QTemporaryDir>
#include <QtEndian>

/// Zip archives, good and hostile ones, as bytes. The offsets are those of APPNOTE.TXT, sections
/// 4.3.7 (local header), 4.3.12 (directory) and 4.3.16 (its end).
namespace ArchiveBytes {

/// An archive that holds `content` under `name`, as the client packs it.
inline QByteArray of(const QString& name, const QByteArray& content)
{
    const QTemporaryDir directory;
    const QString archive = directory.filePath(QStringLiteral("archive"));
    const QString source = directory.filePath(QStringLiteral("source"));
    writeFile(source, content);
    DatabaseArchive::pack(source, archive, name, [](qint64, qint64) { return true; });
    return readFile(archive);
}

inline qsizetype directoryOf(const QByteArray& archive)
{
    return archive.lastIndexOf("PK\1\2");
}

inline qsizetype endOf(const QByteArray& archive)
{
    return archive.lastIndexOf("PK\5\6");
}

template <typename Number>
QByteArray patched(QByteArray archive, qsizetype at, Number number)
{
    qToLittleEndian(number, archive.data() + at);
    return archive;
}

/// As `archive`, but what it holds has that mode on Unix.
inline QByteArray withMode(const QByteArray& archive, quint32 mode)
{
    constexpr int attributes = 38;
    constexpr int modeShift = 16;
    return patched<quint32>(archive, directoryOf(archive) + attributes, mode << modeShift);
}

/// As `archive`, but it claims to be encrypted.
inline QByteArray encrypted(const QByteArray& archive)
{
    constexpr int localFlags = 6;
    constexpr int flags = 8;
    return patched<quint16>(patched<quint16>(archive, localFlags, 1), directoryOf(archive) + flags,
                            1);
}

/// As `archive`, but it claims that its file has so many bytes.
inline QByteArray withSize(const QByteArray& archive, quint32 size)
{
    constexpr int fileSize = 24;
    return patched<quint32>(archive, directoryOf(archive) + fileSize, size);
}

/// What both archives hold, in one.
inline QByteArray joined(const QByteArray& first, const QByteArray& second)
{
    constexpr quint16 files = 2;
    constexpr int localOffset = 42;
    constexpr int entriesHere = 8;
    constexpr int entries = 10;
    constexpr int directoryBytes = 12;
    constexpr int directoryOffset = 16;
    const qsizetype firstDirectory = directoryOf(first);
    const qsizetype secondDirectory = directoryOf(second);
    QByteArray list = first.mid(firstDirectory, endOf(first) - firstDirectory);
    list += patched<quint32>(second.mid(secondDirectory, endOf(second) - secondDirectory),
                             localOffset, static_cast<quint32>(firstDirectory));
    const QByteArray content = first.left(firstDirectory) + second.left(secondDirectory);
    QByteArray end = second.mid(endOf(second));
    end = patched<quint16>(patched<quint16>(end, entriesHere, files), entries, files);
    end = patched<quint32>(end, directoryBytes, static_cast<quint32>(list.size()));
    end = patched<quint32>(end, directoryOffset, static_cast<quint32>(content.size()));
    return content + list + end;
}

} // namespace ArchiveBytes
