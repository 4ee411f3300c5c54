// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/InterfaceCounters.h"

#include <QByteArray>

#include <optional>

namespace {

constexpr qsizetype HeaderLines = 2;
constexpr qsizetype ReceivedField = 0;
constexpr qsizetype TransmittedField = 8;

std::optional<InterfaceCounters> countersIn(const QByteArray& line)
{
    const qsizetype colon = line.indexOf(':');
    const QByteArray name = line.first(qMax<qsizetype>(colon, 0)).trimmed();
    if (name.isEmpty() || name.startsWith("lo") || name.startsWith("pan")) {
        return {};
    }
    const QList<QByteArray> fields = line.sliced(colon + 1).simplified().split(' ');
    if (fields.size() <= TransmittedField) {
        return {};
    }
    bool isReceivedNumber = false;
    bool isTransmittedNumber = false;
    InterfaceCounters counters;
    counters.name = QString::fromUtf8(name);
    counters.received = fields[ReceivedField].toULongLong(&isReceivedNumber);
    counters.transmitted = fields[TransmittedField].toULongLong(&isTransmittedNumber);
    return isReceivedNumber && isTransmittedNumber ? std::optional(counters) : std::nullopt;
}

} // namespace

QList<InterfaceCounters> interfaceCounters(QByteArrayView procNetDev)
{
    QList<InterfaceCounters> result;
    for (const QByteArray& line : procNetDev.toByteArray().split('\n').mid(HeaderLines)) {
        if (const auto counters = countersIn(line)) {
            result.append(*counters);
        }
    }
    return result;
}
