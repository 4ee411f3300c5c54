// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>

/// A connection beside the main one, for much writing in one transaction; see `Database::lend`. It
/// keeps far more of the file in memory than the main one, so that few changed pages are written
/// before their time, and gives the memory back when it goes.
///
/// Opens at construction (see `isOpen`; a failure is logged), and is gone with the object: no query
/// on it may outlive that. Only one at a time. Thread: the one that made it.
class WritingConnection
{
public:
    explicit WritingConnection(const QString& fileName);
    ~WritingConnection();

    WritingConnection(const WritingConnection&) = delete;
    WritingConnection& operator=(const WritingConnection&) = delete;

    bool isOpen() const;
    const QSqlDatabase& database() const;

private:
    QSqlDatabase m_connection;
};
