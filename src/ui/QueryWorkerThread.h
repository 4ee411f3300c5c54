// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/History.h"

#include <QObject>

/// What lives in the query worker's thread: the history and, with it, the connections to the
/// database. Thread: made anywhere, then used and destroyed on one thread.
class QueryWorkerThread : public QObject
{
    Q_OBJECT

public:
    explicit QueryWorkerThread(const QString& databaseFile);

    History& history();

private:
    History m_history;
};
