// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/QueryWorker.h"

#include "ui/QueryWorkerThread.h"

QueryWorker::QueryWorker(const QString& databaseFile, QObject* parent)
    : QObject(parent)
    , m_work(new QueryWorkerThread(databaseFile))
{
    m_thread.setObjectName(QStringLiteral("tv-ui-queries"));
    m_work->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_work, &QObject::deleteLater);
    m_thread.start();
}

QueryWorker::~QueryWorker()
{
    for (const Latest& latest : std::as_const(m_latest)) {
        ++*latest;
    }
    m_thread.quit();
    m_thread.wait();
}

void QueryWorker::enqueue(const QString& topic, QObject* receiver, Job job)
{
    Latest& latest = m_latest[topic];
    if (!latest) {
        latest = std::make_shared<std::atomic<quint64>>(0);
    }
    const quint64 question = ++*latest;
    const QPointer<QObject> target(receiver);
    auto deliver = [this, target, latest, question](const Delivery& delivery) {
        const auto handOver = [target, latest, question, delivery] {
            if (target && *latest == question) {
                delivery();
            }
        };
        QMetaObject::invokeMethod(this, handOver, Qt::QueuedConnection);
    };
    auto work = [work = m_work, latest = latest, question, job = std::move(job),
                 deliver = std::move(deliver)] {
        if (*latest == question) {
            deliver(job(work->history()));
        }
    };
    QMetaObject::invokeMethod(m_work, std::move(work), Qt::QueuedConnection);
}
