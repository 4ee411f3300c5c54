// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/History.h"

#include <QObject>
#include <QTimer>

/// What lives in the query worker's thread: the history and, with it, the connections to the
/// database. Between questions, the history sums up past days. Thread: made anywhere, then used and
/// destroyed on one thread.
class QueryWorkerThread : public QObject
{
    Q_OBJECT

public:
    explicit QueryWorkerThread(const QString& databaseFile);

    /// For a question; there may be something to prepare after it.
    History& history();

private:
    void prepareMore();

    History m_history;
    QTimer m_preparing; ///< Runs while something is left to prepare; waiting questions come first.
};
