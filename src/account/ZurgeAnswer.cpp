// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ZurgeAnswer.h"

#include "account/AnswerFields.h"

#include <QMetaType>

namespace {

const QString TokenField = QStringLiteral("token");

} // namespace

std::optional<ZurgeAnswer> ZurgeAnswer::from(const QMap<QString, QVariant>& data)
{
    const auto totals = OnlineFigures::totalsFrom(data.value(QStringLiteral("new_totals")));
    const auto ranks = OnlineFigures::ranksFrom(data.value(QStringLiteral("new_ranks")));
    const QVariant hasInfo = data.value(QStringLiteral("has_computer_info"), true);
    ZurgeAnswer answer{AnswerFields::text(data.value(TokenField)), {}, {}, hasInfo.toBool()};
    if (answer.token.isEmpty() || !totals || !ranks || hasInfo.typeId() != QMetaType::Bool) {
        return std::nullopt;
    }
    answer.totals = *totals;
    answer.ranks = *ranks;
    return answer;
}

AccountInfo AccountInfo::from(const QMap<QString, QVariant>& data)
{
    return {AnswerFields::text(data.value(TokenField)),
            OnlineFigures::totalsFrom(data.value(QStringLiteral("totals"))),
            OnlineFigures::ranksFrom(data.value(QStringLiteral("ranks")))};
}
