// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/Redacted.h"

#include <QRegularExpression>
#include <QStringList>

namespace {

const QStringList& secretFields()
{
    static const QStringList names{QStringLiteral("client_token"),  QStringLiteral("client_uid"),
                                   QStringLiteral("token"),         QStringLiteral("passwordhash"),
                                   QStringLiteral("password_hash"), QStringLiteral("url")};
    return names;
}

} // namespace

bool isSecretField(const QString& name)
{
    return secretFields().contains(name);
}

QString redacted(const QString& json)
{
    constexpr qsizetype longest = 16384;
    // A value that was cut off counts to the end of the text.
    static const QRegularExpression secret(
        QStringLiteral(R"re(("(?:%1)"\s*:\s*)(?:"(?:[^"\\]|\\.)*+(?:"|\\?$)|[^",}\]\s]++))re")
            .arg(secretFields().join(u'|')));
    QString result = json.left(longest);
    result.replace(secret, QStringLiteral(R"(\1"...")"));
    return result;
}
