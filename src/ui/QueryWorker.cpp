// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/QueryWorker.h"

#include "ui/WorkerConnection.h"

QueryWorker::QueryWorker(const QString& databaseFile, QObject* parent)
    : QObject(parent)
    , m_connection(new WorkerConnection(databaseFile))
{
    m_thread.setObjectName(QStringLiteral("tv-ui-queries"));
    m_connection->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_connection, &QObject::deleteLater);
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
    auto work = [connection = m_connection, latest = latest, question, job = std::move(job),
                 deliver = std::move(deliver)] {
        if (*latest == question) {
            deliver(job(connection->database()));
        }
    };
    QMetaObject::invokeMethod(m_connection, std::move(work), Qt::QueuedConnection);
}
