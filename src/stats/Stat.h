// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QObject>

#include <optional>

class AbstractSystem;

/// One kind of measurement. The collector wakes it on every tick; it decides from its three
/// intervals which of its three update operations is due. Born disabled. Thread: main.
class Stat : public QObject
{
    Q_OBJECT

public:
    /// `system` must outlive the statistic.
    Stat(AbstractSystem* system, QObject* parent);

    virtual int getUpdateMilliSecondMod() const = 0;
    virtual int getUpdateMilliSecondModUI() const = 0; ///< While a window shows live figures.
    virtual int getFrequentUpdateMilliSecond() const = 0;
    virtual int getFrequentUpdateMilliSecondUI() const = 0;
    virtual int getInfrequentUpdateMilliSecond() const = 0;
    virtual void onEnabled();
    virtual void onDisabled();
    virtual void doUpdate(QDateTime now, bool ui);
    virtual void doFrequentUpdate(QDateTime now, bool ui);
    virtual void doInfrequentUpdate(QDateTime now, bool ui);

    /// Due when never done, when a minute passed whatever the interval, or when the interval
    /// passed.
    bool shouldUpdate(const QDateTime& now) const;
    bool shouldFrequentUpdate(const QDateTime& now) const;

    /// Runs the updates that are due at the current local time, or at `now`.
    void update();
    void update(const QDateTime& now);

    /// Runs every update once, due or not: the last chance to write what is held.
    void flush(const QDateTime& now);

    /// For a clock that was set back: the times of the last updates lie in the future now, and
    /// would keep every update waiting until the clock reaches them again. Makes all three due.
    void restartIntervals();

    bool isEnabled() const;
    void setEnabled(bool enabled);
    void setUiMode(bool uiMode);
    void setStatsProfileId(int id);

    /// Whether counts are also filed per application (off at first), and in the detail that a heat
    /// map needs (on at first). Statistics that know no such detail ignore them.
    void setPerApplication(bool enabled);
    void setHeatmap(bool enabled);

protected:
    AbstractSystem& system() const;
    int statsProfileId() const;
    bool isPerApplication() const;
    bool isHeatmap() const;

private:
    void runFrequentUpdate(const QDateTime& now);
    void runUpdate(const QDateTime& now);
    void runInfrequentUpdate(const QDateTime& now);
    bool isUpdateDue(qint64 nowMs) const;
    bool isFrequentUpdateDue(qint64 nowMs) const;
    bool isInfrequentUpdateDue(qint64 nowMs) const;

    // Since the epoch: to compare local times takes far longer than an idle tick may.
    std::optional<qint64> m_lastUpdateMs;
    std::optional<qint64> m_lastInfrequentUpdateMs;
    std::optional<qint64> m_lastFrequentUpdateMs;
    bool m_enabled = false;
    bool m_uiMode = false;
    int m_statsProfileId = 0;
    bool m_perApplication = false;
    bool m_heatmap = true;
    AbstractSystem* m_system;
};
