// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>

class History;
class QueryWorkerThread;

/// Runs queries on one thread of its own, over the history that lives there, and hands the answers
/// back to the main thread. A topic (a view, say) has one question at a time: asking again drops
/// the older one, whether it still waits or is being answered. Thread: main, but for what `ask`
/// says.
class QueryWorker : public QObject
{
    Q_OBJECT

public:
    explicit QueryWorker(const QString& databaseFile, QObject* parent = nullptr);

    /// Drops what waits, lets the statement that runs end, and joins the thread.
    ~QueryWorker() override;

    /// Runs `query` on the worker's thread and `deliver` with its result on this one, unless the
    /// question was outrun or `receiver` is gone by then. `query` returns nothing (`std::nullopt`)
    /// where the database could not be read.
    template <typename Answer>
    void ask(const QString& topic, QObject* receiver,
             std::function<std::optional<Answer>(History&)> query,
             std::function<void(const std::optional<Answer>&)> deliver)
    {
        enqueue(topic, receiver,
                [query = std::move(query), deliver = std::move(deliver)](History& history) {
                    const std::optional<Answer> answer = query(history);
                    return Delivery([deliver, answer] { deliver(answer); });
                });
    }

private:
    using Delivery = std::function<void()>;
    using Job = std::function<Delivery(History&)>;
    using Latest = std::shared_ptr<std::atomic<quint64>>; ///< The newest question of a topic.

    void enqueue(const QString& topic, QObject* receiver, Job job);

    QHash<QString, Latest> m_latest;
    QThread m_thread;
    QueryWorkerThread* m_work; ///< Lives in the thread, which deletes it as it ends.
};
