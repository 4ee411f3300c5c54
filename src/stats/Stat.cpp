// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/Stat.h"

namespace {

/// Whatever interval a statistic declares, a minute without an update is enough.
constexpr int LongestWaitMs = 60'000;

bool isDue(const std::optional<qint64>& lastMs, qint64 nowMs, int intervalMs)
{
    if (!lastMs) {
        return true;
    }
    // Narrowed on purpose: a pause of more than 24.8 days wraps around, and is then judged by what
    // remains, as it has always been.
    const auto elapsedMs = static_cast<qint32>(nowMs - *lastMs);
    return elapsedMs >= LongestWaitMs || elapsedMs >= intervalMs;
}

} // namespace

Stat::Stat(AbstractSystem* system, QObject* parent)
    : QObject(parent)
    , m_system(system)
{
    Q_ASSERT(system != nullptr);
}

void Stat::onEnabled() {}

void Stat::onDisabled() {}

// The time is handed on by value to every statistic, which may keep it.
// NOLINTBEGIN(performance-unnecessary-value-param)
void Stat::doUpdate(QDateTime, bool) {}

void Stat::doFrequentUpdate(QDateTime, bool) {}

void Stat::doInfrequentUpdate(QDateTime, bool) {}

// NOLINTEND(performance-unnecessary-value-param)

bool Stat::shouldUpdate(const QDateTime& now) const
{
    return isUpdateDue(now.toMSecsSinceEpoch());
}

bool Stat::shouldFrequentUpdate(const QDateTime& now) const
{
    return isFrequentUpdateDue(now.toMSecsSinceEpoch());
}

bool Stat::isUpdateDue(qint64 nowMs) const
{
    return isDue(m_lastUpdateMs, nowMs,
                 m_uiMode ? getUpdateMilliSecondModUI() : getUpdateMilliSecondMod());
}

bool Stat::isFrequentUpdateDue(qint64 nowMs) const
{
    return isDue(m_lastFrequentUpdateMs, nowMs,
                 m_uiMode ? getFrequentUpdateMilliSecondUI() : getFrequentUpdateMilliSecond());
}

bool Stat::isInfrequentUpdateDue(qint64 nowMs) const
{
    return !m_lastInfrequentUpdateMs ||
           getInfrequentUpdateMilliSecond() <= nowMs - *m_lastInfrequentUpdateMs;
}

void Stat::update()
{
    update(QDateTime::currentDateTime());
}

void Stat::update(const QDateTime& now)
{
    const qint64 nowMs = now.toMSecsSinceEpoch();
    if (isFrequentUpdateDue(nowMs)) {
        runFrequentUpdate(now);
    }
    if (isUpdateDue(nowMs)) {
        runUpdate(now);
    }
    if (isInfrequentUpdateDue(nowMs)) {
        runInfrequentUpdate(now);
    }
}

void Stat::flush(const QDateTime& now)
{
    runFrequentUpdate(now);
    runUpdate(now);
    runInfrequentUpdate(now);
}

void Stat::restartIntervals()
{
    m_lastUpdateMs.reset();
    m_lastInfrequentUpdateMs.reset();
    m_lastFrequentUpdateMs.reset();
}

void Stat::runFrequentUpdate(const QDateTime& now)
{
    doFrequentUpdate(now, m_uiMode);
    m_lastFrequentUpdateMs = now.toMSecsSinceEpoch();
}

void Stat::runUpdate(const QDateTime& now)
{
    doUpdate(now, m_uiMode);
    m_lastUpdateMs = now.toMSecsSinceEpoch();
}

void Stat::runInfrequentUpdate(const QDateTime& now)
{
    doInfrequentUpdate(now, m_uiMode);
    m_lastInfrequentUpdateMs = now.toMSecsSinceEpoch();
}

bool Stat::isEnabled() const
{
    return m_enabled;
}

void Stat::setEnabled(bool enabled)
{
    if (enabled == m_enabled) {
        return;
    }
    m_enabled = enabled;
    if (enabled) {
        onEnabled();
    } else {
        onDisabled();
    }
}

void Stat::setUiMode(bool uiMode)
{
    m_uiMode = uiMode;
}

void Stat::setStatsProfileId(int id)
{
    m_statsProfileId = id;
}

void Stat::setPerApplication(bool enabled)
{
    m_perApplication = enabled;
}

void Stat::setHeatmap(bool enabled)
{
    m_heatmap = enabled;
}

AbstractSystem& Stat::system() const
{
    return *m_system;
}

int Stat::statsProfileId() const
{
    return m_statsProfileId;
}

bool Stat::isPerApplication() const
{
    return m_perApplication;
}

bool Stat::isHeatmap() const
{
    return m_heatmap;
}
