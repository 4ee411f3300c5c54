// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>

/// A connection to a database file for reading, beside the main one. Opens at construction (see
/// `isOpen`; a failure is logged), and is gone with the object: no query on it may outlive that.
/// Thread: the one that made it.
class ReadingConnection
{
public:
    enum class Locking
    {
        Usual,
        /// Takes no lock, so that no writer waits for it, and looks at no journal: what it reads
        /// may be one half of a change, and is only ever a hint.
        None,
    };

    explicit ReadingConnection(const QString& fileName, Locking locking = Locking::Usual);
    ~ReadingConnection();

    ReadingConnection(const ReadingConnection&) = delete;
    ReadingConnection& operator=(const ReadingConnection&) = delete;

    bool isOpen() const;
    const QSqlDatabase& database() const;

private:
    QSqlDatabase m_connection;
};
