// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QElapsedTimer>
#include <QHash>
#include <QSqlDatabase>
#include <QString>
#include <QThread>
#include <QTimer>

#include <functional>

class Stat;

/// The clock of all statistics: a tick every 500 ms, inside one database transaction, and a save of
/// the account totals every ten minutes.
///
/// The object, its timers and its slots live on the main thread; the thread it starts runs an empty
/// event loop. Thread: main.
class Collector : public QThread
{
    Q_OBJECT

public:
    explicit Collector(QObject* parent);

    /// Ends the thread.
    ~Collector() override;

    /// Ticks `stat` under its class name; one of the same class before it is ticked no more. Not
    /// owned: remove it before it is destroyed.
    void addStat(Stat* stat);
    void removeStat(Stat* stat);
    void removeStat(const QString& className);

    /// The statistic of this class name as a `Concrete`, or null.
    template <typename Concrete>
    Concrete* getStat(const QString& className) const
    {
        return qobject_cast<Concrete*>(m_stats.value(className));
    }

    /// Asks at each tick whether a window shows live figures; without it none does.
    void setUiModeSource(std::function<bool()> isUiMode);

    /// Counting is going on: started, and neither paused nor stopped.
    bool isCollecting() const;

    /// These take effect when the event loop turns, in the order of the calls. Pausing leaves the
    /// statistics switched on: what they gather meanwhile is counted when counting goes on.
    /// Stopping is for good: it lets every statistic write what it holds and switches it off.
    void startCollector();
    void pauseCollector();
    void stopCollector();

    /// Lets every statistic that is on write what it holds, at once: before some of them are
    /// switched, so that what was counted until then is filed as it was meant to be.
    void flush();

    /// For the end of the process, where no event loop turns any more: carries out at once what the
    /// three calls above left waiting, then ends the thread and waits for it.
    void finish();

    /// One tick at `now`. Does nothing while the database cannot be written or is lent, or while a
    /// tick is under way (a message box within one runs an event loop).
    ///
    /// A transaction that cannot begin leaves everything where it was gathered, for the next tick.
    /// One that cannot be committed (disk full, another program's lock) is rolled back: the rows of
    /// that tick are lost, the account totals in memory are not. Either is logged, at most once a
    /// minute.
    void update(const QDateTime& now);

public Q_SLOTS:
    /// One tick at the current local time.
    void update();

    /// Saves the account totals' file.
    void saveLocal();

protected:
    void run() override;

private Q_SLOTS:
    void startCollectorInternal();
    void pauseCollectorInternal();
    void stopCollectorInternal();

private:
    void updateStats(const QDateTime& now);
    void flushStats(const QDateTime& now);
    QList<Stat*> preparedStats();
    void restartIntervals();
    bool copyTotals(const QDateTime& now);
    bool isWritable();
    bool begin();
    bool commit();
    void reportFailure(const char* operation);

    QSqlDatabase m_database;
    QHash<QString, Stat*> m_stats;
    QTimer m_updateTimer;
    QTimer m_saveTimer;
    bool m_running = false;

    std::function<bool()> m_isUiMode;
    bool m_inTransaction = false;
    QDateTime m_lastCopy; ///< When the totals' copy in the database was last brought up to date.
    QElapsedTimer m_lastFailureReport;
    int m_unreportedFailures = 0;
};
