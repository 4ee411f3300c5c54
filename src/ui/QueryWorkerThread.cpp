// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/QueryWorkerThread.h"

QueryWorkerThread::QueryWorkerThread(const QString& databaseFile)
    : m_history(databaseFile)
{
}

History& QueryWorkerThread::history()
{
    return m_history;
}
