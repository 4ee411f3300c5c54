// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSqlDatabase>
#include <QString>

#include <memory>

class ReadingConnection;

/// The connection that lives in the query worker's thread, opened when it is first wanted. Thread:
/// made anywhere, then used and destroyed on one thread.
class WorkerConnection : public QObject
{
    Q_OBJECT

public:
    explicit WorkerConnection(const QString& databaseFile);
    ~WorkerConnection() override;

    /// The connection; not open where the file cannot be opened, which the next call tries again.
    QSqlDatabase database();

private:
    QString m_databaseFile;
    std::unique_ptr<ReadingConnection> m_connection;
};
