// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/CountedRow.h"
#include "stats/Stat.h"

#include <QHash>
#include <QString>

/// Files how long each application runs, by profile, and how long it is in front, by hour and
/// profile. Thread: main.
class ApplicationUptimeStat : public Stat
{
    Q_OBJECT

public:
    /// Prepares its statements; `Database`, `LocalStats` must exist.
    ApplicationUptimeStat(AbstractSystem* system, QObject* parent);

    int getUpdateMilliSecondMod() const override;
    int getUpdateMilliSecondModUI() const override;
    int getFrequentUpdateMilliSecond() const override;
    int getFrequentUpdateMilliSecondUI() const override;
    int getInfrequentUpdateMilliSecond() const override;

    /// Adds to the time that the running applications run, and files what `doFrequentUpdate`
    /// gathered.
    void doUpdate(QDateTime now, bool ui) override;

    /// Gathers the time of the application in front.
    void doFrequentUpdate(QDateTime now, bool ui) override;

private:
    qint64 noteRunning(const QString& path, const QDateTime& now);
    int noteInFront(const QString& path, const QDateTime& now);
    void writeRunning(const QString& path, qint64 elapsedMs);
    void writeFrontSeconds(const QDateTime& now);

    CountedRow m_running;
    CountedRow m_frontHour;
    PreparedStatement m_updateLastUsed;
    QHash<QString, QDateTime> m_lastSeenRunning; ///< By path, as are the next two.
    QHash<QString, QDateTime> m_lastInFront;
    QHash<QString, int> m_frontSeconds; ///< Not yet filed.
};
