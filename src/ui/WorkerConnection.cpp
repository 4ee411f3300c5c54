// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/WorkerConnection.h"

#include "storage/ReadingConnection.h"

WorkerConnection::WorkerConnection(const QString& databaseFile)
    : m_databaseFile(databaseFile)
{
}

WorkerConnection::~WorkerConnection() = default;

QSqlDatabase WorkerConnection::database()
{
    if (!m_connection || !m_connection->isOpen()) {
        m_connection = std::make_unique<ReadingConnection>(m_databaseFile);
    }
    return m_connection->database();
}
