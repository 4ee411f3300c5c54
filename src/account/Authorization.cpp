// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/Authorization.h"

#include "account/AnswerFields.h"

#include <algorithm>
#include <array>

namespace {

const QString UserId = QStringLiteral("userid");
const QString ComputerId = QStringLiteral("computerid");
const QString PasswordHash = QStringLiteral("passwordhash");

} // namespace

bool holdsAuthorization(const QMap<QString, QVariant>& data)
{
    return std::ranges::all_of(std::array{UserId, ComputerId, PasswordHash},
                               [&data](const QString& name) {
                                   const QVariant value = data.value(name);
                                   return !value.isNull() && value != QVariant(QString());
                               });
}

std::optional<Authorization> parseAuthorization(const QMap<QString, QVariant>& data)
{
    const auto text = [&data](const QString& name) { return AnswerFields::text(data.value(name)); };
    const auto object = [&data](const QString& name) {
        return AnswerFields::object(data.value(name));
    };
    Authorization result;
    result.identity = {.userId = AnswerFields::wholeNumber(data.value(UserId)).value_or(0),
                       .computerId = AnswerFields::wholeNumber(data.value(ComputerId)).value_or(0),
                       .email = text(QStringLiteral("email")),
                       .userName = text(QStringLiteral("username")),
                       .computer = text(QStringLiteral("computer")),
                       .passwordHash = text(PasswordHash)};
    if (!result.identity.isSignedIn()) {
        return std::nullopt;
    }
    result.zurgeToken = text(QStringLiteral("token"));
    result.lastZurge = AnswerFields::localTime(data.value(QStringLiteral("lastzurge")));
    result.totals = object(QStringLiteral("totals"));
    result.ranks = object(QStringLiteral("ranks"));
    result.computerStats = object(QStringLiteral("computer_stats"));
    result.backups = parseOnlineBackups(data.value(QStringLiteral("database_backups")));
    result.clientSettings = object(QStringLiteral("client_settings"));
    return result;
}

QList<OnlineBackup> parseOnlineBackups(const QVariant& list)
{
    QList<OnlineBackup> backups;
    for (const AnswerFields::Map& fields : AnswerFields::objects(list)) {
        const QString name = AnswerFields::text(fields.value(QStringLiteral("filename")));
        const std::optional<qint64> size =
            AnswerFields::wholeNumber(fields.value(QStringLiteral("size")));
        if (!name.isEmpty() && !name.contains(QLatin1Char('/'))) {
            backups << OnlineBackup{
                .fileName = name,
                .createdAt = AnswerFields::localTime(fields.value(QStringLiteral("created_at"))),
                .bytes = std::max<qint64>(size.value_or(0), 0)};
        }
    }
    std::ranges::stable_sort(backups, std::ranges::greater(), &OnlineBackup::createdAt);
    return backups;
}
