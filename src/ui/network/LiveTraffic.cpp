// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/network/LiveTraffic.h"

#include <QSet>

#include <algorithm>

namespace {

constexpr qint64 KeptSeconds = qint64{61} * LiveTraffic::SecondsPerMinute;

TrafficTotals perSecond(const TrafficTotals& traffic, qint64 seconds)
{
    return {.download = traffic.download / seconds, .upload = traffic.upload / seconds};
}

} // namespace

void LiveTraffic::take(const QList<SecondTraffic>& traffic)
{
    for (const SecondTraffic& one : traffic) {
        m_seconds[one.second][one.macAddress] = one.traffic;
    }
    if (!m_seconds.empty()) {
        m_seconds.erase(m_seconds.begin(), m_seconds.lower_bound(*newest() - KeptSeconds));
    }
}

void LiveTraffic::clear()
{
    m_seconds.clear();
}

std::optional<qint64> LiveTraffic::newest() const
{
    return m_seconds.empty() ? std::nullopt : std::optional(m_seconds.crbegin()->first);
}

QStringList LiveTraffic::interfaces() const
{
    QSet<QString> found;
    for (const auto& [second, interfaces] : m_seconds) {
        for (auto it = interfaces.cbegin(); it != interfaces.cend(); ++it) {
            found.insert(it.key());
        }
    }
    QStringList sorted(found.values());
    sorted.sort();
    return sorted;
}

TrafficTotals LiveTraffic::sum(qint64 first, qint64 last, const QString& macAddress) const
{
    TrafficTotals sum;
    const auto end = m_seconds.upper_bound(last);
    for (auto it = m_seconds.lower_bound(first); it != end; ++it) {
        if (!macAddress.isEmpty()) {
            sum += it->second.value(macAddress);
            continue;
        }
        for (const TrafficTotals& traffic : it->second) {
            sum += traffic;
        }
    }
    return sum;
}

LiveTraffic::Rates LiveTraffic::seconds(qint64 now, const QString& macAddress) const
{
    Rates rates;
    for (qint64 second = now - SlotCount; second < now; ++second) {
        const bool isKnown = !isEmpty() && second >= m_seconds.cbegin()->first;
        rates.append(isKnown ? std::optional(sum(second, second, macAddress)) : std::nullopt);
    }
    return rates;
}

qint64 LiveTraffic::firstMinute(qint64 now)
{
    return now - now % SecondsPerMinute - qint64{SlotCount - 1} * SecondsPerMinute;
}

LiveTraffic::Rates LiveTraffic::minutes(qint64 now, const QString& macAddress) const
{
    Rates rates;
    const qint64 first = firstMinute(now);
    for (int slot = 0; slot < SlotCount; ++slot) {
        const qint64 begin = first + qint64{slot} * SecondsPerMinute;
        const qint64 last = std::min(begin + SecondsPerMinute, now) - 1;
        const bool isKnown = !isEmpty() && last >= m_seconds.cbegin()->first;
        rates.append(isKnown ? std::optional(perSecond(sum(begin, last, macAddress),
                                                       std::max<qint64>(1, last - begin + 1)))
                             : std::nullopt);
    }
    return rates;
}
