// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/Redacted.h"

#include <QRegularExpression>

QString redacted(const QString& json)
{
    constexpr qsizetype longest = 16384;
    // A value that was cut off counts to the end of the text.
    static const QRegularExpression secret(QStringLiteral(
        R"re(("(?:client_token|client_uid|token|passwordhash|password_hash)"\s*:\s*)(?:"(?:[^"\\]|\\.)*+(?:"|\\?$)|[^",}\]\s]++))re"));
    QString result = json.left(longest);
    result.replace(secret, QStringLiteral(R"(\1"...")"));
    return result;
}
