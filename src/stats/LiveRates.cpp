// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/LiveRates.h"

#include <algorithm>
#include <utility>

using std::chrono::milliseconds;

LiveRates::LiveRates(Clock clock)
    : m_clock(std::move(clock))
{
}

milliseconds LiveRates::steadyClock()
{
    return std::chrono::duration_cast<milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

void LiveRates::noteKey()
{
    ++currentSlice().keys;
}

void LiveRates::noteClick()
{
    ++currentSlice().clicks;
}

void LiveRates::noteTraffic(quint64 download, quint64 upload)
{
    Slice& slice = currentSlice();
    slice.download += download;
    slice.upload += upload;
    slice.isTrafficWatched = true;
}

double LiveRates::keysPerSecond() const
{
    return perSecond(&Slice::keys);
}

double LiveRates::clicksPerSecond() const
{
    return perSecond(&Slice::clicks);
}

std::optional<double> LiveRates::downloadPerSecond() const
{
    return isTrafficWatched() ? std::optional(perSecond(&Slice::download)) : std::nullopt;
}

std::optional<double> LiveRates::uploadPerSecond() const
{
    return isTrafficWatched() ? std::optional(perSecond(&Slice::upload)) : std::nullopt;
}

qint64 LiveRates::sliceNumber() const
{
    return m_clock() / SliceLength;
}

LiveRates::Slice& LiveRates::currentSlice()
{
    const qint64 number = sliceNumber();
    Slice& slice = m_slices.at(static_cast<size_t>(number % SliceCount));
    if (slice.number != number) {
        slice = {.number = number};
    }
    return slice;
}

bool LiveRates::isWithinWindow(const Slice& slice, qint64 current) const
{
    return slice.number >= 0 && current - slice.number < SliceCount;
}

double LiveRates::perSecond(quint64 Slice::*amount) const
{
    const qint64 current = sliceNumber();
    quint64 sum = 0;
    for (const Slice& slice : m_slices) {
        sum += isWithinWindow(slice, current) ? slice.*amount : 0;
    }
    constexpr std::chrono::duration<double> window = Window;
    return static_cast<double>(sum) / window.count();
}

bool LiveRates::isTrafficWatched() const
{
    return std::ranges::any_of(m_slices, [this, current = sliceNumber()](const Slice& slice) {
        return slice.isTrafficWatched && isWithinWindow(slice, current);
    });
}
