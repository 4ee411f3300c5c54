// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/FileDescriptor.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <fcntl.h>
#include <linux/input.h>
#include <sys/stat.h>

/// A record as the kernel writes it, `microseconds` after the epoch.
inline input_event makeRecord(int type, int code, int value, qint64 microseconds = 0)
{
    constexpr qint64 perSecond = 1'000'000;
    input_event record = {};
    record.input_event_sec = microseconds / perSecond;
    record.input_event_usec = microseconds % perSecond;
    record.type = static_cast<quint16>(type);
    record.code = static_cast<quint16>(code);
    record.value = value;
    return record;
}

inline QByteArray bytesOf(const QList<input_event>& records)
{
    return {reinterpret_cast<const char*>(records.constData()),
            records.size() * static_cast<qsizetype>(sizeof(input_event))};
}

/// A named pipe in the place of a device node: what is written to it arrives as from a device, and
/// closing it ends the device.
class InputPipe final
{
public:
    explicit InputPipe(const QString& path)
        : m_path(path)
    {
        mkfifo(QFile::encodeName(path).constData(), S_IRUSR | S_IWUSR);
        // Open for both, it needs no reader yet.
        m_end = FileDescriptor(open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC));
    }

    /// Writes all of it at once, so that a reader finds either nothing or everything.
    bool write(const QByteArray& bytes) const
    {
        return ::write(m_end.get(), bytes.constData(), static_cast<size_t>(bytes.size())) ==
               bytes.size();
    }

    bool write(const QList<input_event>& records) const { return write(bytesOf(records)); }

    /// Presses and releases the keys, one after the other.
    bool tap(const QList<int>& codes) const
    {
        QList<input_event> records;
        for (const int code : codes) {
            records << makeRecord(EV_KEY, code, 1) << makeRecord(EV_KEY, code, 0)
                    << makeRecord(EV_SYN, SYN_REPORT, 0);
        }
        return write(records);
    }

    /// What a reader sees next is the end of the file.
    void close() { m_end = FileDescriptor(); }

    void remove()
    {
        QFile::remove(m_path);
        close();
    }

private:
    QString m_path;
    FileDescriptor m_end;
};
