// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ZurgeAnswer.h"

#include <QMetaType>

namespace {

/// The text; empty where there is none.
QString tokenFrom(const QMap<QString, QVariant>& data)
{
    const QVariant token = data.value(QStringLiteral("token"));
    return token.typeId() == QMetaType::QString ? token.toString() : QString();
}

} // namespace

std::optional<ZurgeAnswer> ZurgeAnswer::from(const QMap<QString, QVariant>& data)
{
    const auto totals = OnlineFigures::totalsFrom(data.value(QStringLiteral("new_totals")));
    const auto ranks = OnlineFigures::ranksFrom(data.value(QStringLiteral("new_ranks")));
    const QVariant hasInfo = data.value(QStringLiteral("has_computer_info"), true);
    ZurgeAnswer answer{tokenFrom(data), {}, {}, hasInfo.toBool()};
    if (answer.token.isEmpty() || !totals || !ranks || hasInfo.typeId() != QMetaType::Bool) {
        return std::nullopt;
    }
    answer.totals = *totals;
    answer.ranks = *ranks;
    return answer;
}

AccountInfo AccountInfo::from(const QMap<QString, QVariant>& data)
{
    return {tokenFrom(data), OnlineFigures::totalsFrom(data.value(QStringLiteral("totals"))),
            OnlineFigures::ranksFrom(data.value(QStringLiteral("ranks")))};
}
