// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/QueryWorkerThread.h"

QueryWorkerThread::QueryWorkerThread(const QString& databaseFile)
    : m_history(databaseFile)
    , m_preparing(this)
{
    m_preparing.setInterval(0);
    connect(&m_preparing, &QTimer::timeout, this, &QueryWorkerThread::prepareMore);
}

History& QueryWorkerThread::history()
{
    m_preparing.start();
    return m_history;
}

void QueryWorkerThread::prepareMore()
{
    if (!m_history.prepareMore()) {
        m_preparing.stop();
    }
}
