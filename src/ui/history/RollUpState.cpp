// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/RollUpState.h"

#include "ui/history/RollUpFile.h"

#include <QStringList>

#include <algorithm>

namespace {

const QString Stamp = QStringLiteral("stamp");
const QString FirstDays = QStringLiteral("first_days"); ///< Of `HistoryMarks`.
const QString Summed = QStringLiteral("summed");        ///< From and until.
const QString Pending = QStringLiteral("pending");

template <typename Days>
QString joined(const Days& days)
{
    QStringList texts;
    for (const qint64 day : days) {
        texts += QString::number(day);
    }
    return texts.join(QLatin1Char(','));
}

QList<qint64> numbers(const QString& text)
{
    QList<qint64> days;
    for (const QString& day : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        days += day.toLongLong();
    }
    return days;
}

} // namespace

bool RollUpState::load(const RollUpFile& file)
{
    const QList<qint64> firstDays = numbers(file.value(FirstDays));
    const QList<qint64> summed = numbers(file.value(Summed));
    const QList<qint64> pending = numbers(file.value(Pending));
    if (firstDays.size() != HistoryMarks::PrunedTables || summed.size() != 2) {
        return false;
    }
    marks.stamp = file.value(Stamp);
    std::ranges::copy(firstDays, marks.firstDays.begin());
    coverage = {.from = summed.first(),
                .until = summed.last(),
                .pending = {pending.cbegin(), pending.cend()}};
    return coverage.isValid();
}

bool RollUpState::store(RollUpFile& file) const
{
    const QList<qint64> summed{coverage.from, coverage.until};
    return file.setValue(Stamp, marks.stamp) && file.setValue(FirstDays, joined(marks.firstDays)) &&
           file.setValue(Summed, joined(summed)) &&
           file.setValue(Pending, joined(coverage.pending));
}
