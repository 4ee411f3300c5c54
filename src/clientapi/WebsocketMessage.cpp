// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/WebsocketMessage.h"

#include "account/AnswerFields.h"
#include "account/JsonReader.h"

std::optional<WebsocketMessage> WebsocketMessage::fromJson(const QString& text)
{
    JsonReader reader;
    if (!reader.parse(text) || reader.result().typeId() != QMetaType::QVariantMap) {
        return std::nullopt;
    }
    const QVariantMap object = reader.result().toMap();
    const auto field = [&object](const char* name) {
        return AnswerFields::text(object.value(QLatin1String(name)));
    };
    const QVariant profileName = object.value(QStringLiteral("profile_name"));
    const bool isNamed = profileName.typeId() == QMetaType::QString;
    return WebsocketMessage{.source = field("source"),
                            .action = field("action"),
                            .identifier = field("identifier"),
                            .profileName =
                                isNamed ? std::optional(profileName.toString()) : std::nullopt};
}
