// SPDX-License-Identifier: GPL-3.0-or-later
#include "UiDatabase.h"
#include "support/TestRegistry.h"
#include "ui/QueryWorker.h"
#include "ui/history/History.h"

#include <QSemaphore>
#include <QSqlQuery>
#include <QTest>

class QueryWorkerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsOffTheMainThreadAndWritesNothing();
    void dropsOutrunAnswers();
    void keepsTopicsApartAndForgetsLostReceivers();
    void joinsWithQuestionsWaiting();
    void saysThatTheFileIsMissing();

private:
    using Answer = std::optional<int>;

    /// A query that says that it began, and returns `value` once it may go on.
    static std::function<Answer(History&)> held(int value);

    const UiDatabase m_database{};
    static inline QSemaphore s_began{0};
    static inline QSemaphore s_mayGoOn{0};
    static inline std::atomic<int> s_run = 0;
};

std::function<QueryWorkerTest::Answer(History&)> QueryWorkerTest::held(int value)
{
    return [value](History&) -> Answer {
        ++s_run;
        s_began.release();
        s_mayGoOn.acquire();
        return value;
    };
}

void QueryWorkerTest::readsOffTheMainThreadAndWritesNothing()
{
    QueryWorker worker(m_database.file());
    std::optional<bool> written;
    const QThread* asked = nullptr;
    worker.ask<bool>(
        QStringLiteral("topic"), this,
        [&asked](History& history) -> std::optional<bool> {
            asked = QThread::currentThread();
            return QSqlQuery(history.connection()).exec(QStringLiteral("DELETE FROM settings"));
        },
        [&](const std::optional<bool>& answer) {
            QCOMPARE(QThread::currentThread(), thread());
            written = answer;
        });
    QTRY_VERIFY(written);
    QVERIFY(!*written);
    QVERIFY(asked != thread());
}

void QueryWorkerTest::dropsOutrunAnswers()
{
    QueryWorker worker(m_database.file());
    QList<int> answers;
    const auto take = [&answers](const Answer& answer) { answers.append(answer.value_or(-1)); };
    s_run = 0;
    // The first is being answered, the second waits, when the third is asked.
    worker.ask<int>(QStringLiteral("topic"), this, held(1), take);
    s_began.acquire();
    worker.ask<int>(QStringLiteral("topic"), this, held(2), take);
    worker.ask<int>(QStringLiteral("topic"), this, held(3), take);
    s_mayGoOn.release(2);
    QTRY_COMPARE(answers.size(), 1);
    QTest::qWait(20);
    QCOMPARE(answers, QList<int>{3});
    QCOMPARE(s_run.load(), 2);
    s_began.acquire();
}

void QueryWorkerTest::keepsTopicsApartAndForgetsLostReceivers()
{
    QueryWorker worker(m_database.file());
    QList<int> answers;
    const auto ask = [&](const QString& topic, QObject* receiver, int value) {
        worker.ask<int>(
            topic, receiver, [value](History&) -> Answer { return value; },
            [&answers](const Answer& answer) { answers.append(answer.value_or(-1)); });
    };
    {
        QObject receiver;
        ask(QStringLiteral("lost"), &receiver, 0);
    }
    ask(QStringLiteral("one"), this, 1);
    ask(QStringLiteral("two"), this, 2);
    const QList<int> both{1, 2};
    QTRY_COMPARE(answers, both);
}

void QueryWorkerTest::joinsWithQuestionsWaiting()
{
    bool delivered = false;
    {
        QueryWorker worker(m_database.file());
        const auto note = [&delivered](const Answer&) { delivered = true; };
        worker.ask<int>(QStringLiteral("one"), this, held(1), note);
        s_began.acquire();
        worker.ask<int>(QStringLiteral("two"), this, held(2), note);
        // Enough for both: the second may have begun before the worker is told to end.
        s_mayGoOn.release(2);
    }
    s_mayGoOn.tryAcquire(s_mayGoOn.available());
    s_began.tryAcquire(s_began.available());
    QCoreApplication::processEvents();
    QVERIFY(!delivered);
    for (const QString& name : QSqlDatabase::connectionNames()) {
        QVERIFY2(!name.startsWith(QStringLiteral("tv-db-connection-0x")), qPrintable(name));
    }
}

void QueryWorkerTest::saysThatTheFileIsMissing()
{
    QueryWorker worker(QStringLiteral("/proc/no-such-directory/tallyvane.db"));
    bool answered = false;
    worker.ask<qint64>(
        QStringLiteral("topic"), this, [](History& history) { return history.version(); },
        [&answered](const std::optional<qint64>& answer) {
            answered = true;
            QVERIFY(!answer);
        });
    QTRY_VERIFY(answered);
}

REGISTER_TEST(QueryWorkerTest);
#include "QueryWorkerTest.moc"
