// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ZurgeAmounts.h"

#include <QStringList>

#include <algorithm>

namespace {

/// In the order of `UnzurgedCounters`.
constexpr std::array WishedCounters{
    &ZurgeWish::keys,           &ZurgeWish::clicks,        &ZurgeWish::downloadMiB,
    &ZurgeWish::uploadMiB,      &ZurgeWish::uptimeSeconds, &ZurgeWish::scrolls,
    &ZurgeWish::distanceInches,
};
static_assert(WishedCounters.size() == UnzurgedCounters.size());

constexpr quint64 saturatingProduct(quint64 count, quint64 unit)
{
    return count < CounterLimit / unit ? count * unit : CounterLimit;
}

constexpr quint64 chooseOne(quint64 wished, quint64 stored)
{
    // Subtracted, since twice a large wish may not fit.
    const bool moreThanTwice = stored > wished && stored - wished > wished;
    // A wish from outside may be for more than was counted; such counts do not exist.
    return wished == 0 || moreThanTwice ? stored : std::min(wished, stored);
}

} // namespace

namespace ZurgeAmounts {

UnzurgedCounts choose(const ZurgeWish& wish, const UnzurgedCounts& stored)
{
    UnzurgedCounts chosen;
    for (std::size_t i = 0; i < UnzurgedCounters.size(); ++i) {
        const UnzurgedCounter& counter = UnzurgedCounters.at(i);
        const quint64 wished =
            saturatingProduct(wish.*WishedCounters.at(i), counter.perServiceUnit);
        chosen.*counter.value = chooseOne(wished, stored.*counter.value);
    }
    return chosen;
}

UnzurgedCounts wholeUnits(const UnzurgedCounts& counts)
{
    UnzurgedCounts whole;
    for (const UnzurgedCounter& counter : UnzurgedCounters) {
        const quint64 count = counts.*counter.value;
        whole.*counter.value = count - count % counter.perServiceUnit;
    }
    return whole;
}

UnzurgedCounts subtract(const UnzurgedCounts& counts, const UnzurgedCounts& sent)
{
    UnzurgedCounts rest;
    for (const UnzurgedCounter& counter : UnzurgedCounters) {
        const quint64 count = counts.*counter.value;
        rest.*counter.value = count - std::min(count, sent.*counter.value);
    }
    return rest;
}

QString describe(const UnzurgedCounts& counts)
{
    QStringList parts;
    for (const UnzurgedCounter& counter : UnzurgedCounters) {
        if (const quint64 count = counts.*counter.value; count > 0) {
            parts << QString(counter.name) + QLatin1Char(' ') + QString::number(count);
        }
    }
    return parts.isEmpty() ? QStringLiteral("nothing") : parts.join(QStringLiteral(", "));
}

} // namespace ZurgeAmounts
