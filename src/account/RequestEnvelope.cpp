// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/RequestEnvelope.h"

#include "account/JsonWriter.h"
#include "account/Redacted.h"
#include "account/RequestTypes.h"
#include "base/Log.h"
#include "base/Version.h"

#include <QStringList>

namespace RequestEnvelope {

namespace {

QString shown(const QString& name, const QVariant& value)
{
    constexpr qsizetype longest = 200; // Characters.
    if (isSecretField(name)) {
        return QStringLiteral("(hidden)");
    }
    switch (value.typeId()) {
    case QMetaType::QVariantMap:
        return QStringLiteral("(object of %1)").arg(value.toMap().size());
    case QMetaType::QVariantList:
        return QStringLiteral("(list of %1)").arg(value.toList().size());
    default:
        return value.toString().left(longest);
    }
}

} // namespace

std::optional<QString> text(const QString& requestType, const QString& clientToken, const Map& data)
{
    Map envelope{{QStringLiteral("action"), requestType},
                 {QStringLiteral("client_version"), versionString()},
                 {QStringLiteral("data"), data},
                 {QStringLiteral("type_os"), QStringLiteral("linux")}};
    if (!clientToken.isEmpty()) {
        envelope.insert(QStringLiteral("client_token"), clientToken);
    }
    JsonWriter writer;
    if (!writer.stringify(envelope)) {
        Log::error("The request {} cannot be written: {}", requestType, writer.errorString());
        return std::nullopt;
    }
    return writer.result();
}

std::optional<QString> signInText(const AccountIdentity& identity)
{
    return text(RequestTypes::ClientLogin, {},
                {{QStringLiteral("userid"), identity.userId},
                 {QStringLiteral("computerid"), identity.computerId},
                 {QStringLiteral("passwordhash"), identity.passwordHash}});
}

QString forLog(const Map& data)
{
    QStringList fields;
    for (auto it = data.cbegin(); it != data.cend(); ++it) {
        fields << it.key() + QStringLiteral(": ") + shown(it.key(), it.value());
    }
    return fields.isEmpty() ? QStringLiteral("(none)") : fields.join(QStringLiteral(", "));
}

} // namespace RequestEnvelope
