// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/WebsocketMessage.h"

#include "account/AnswerFields.h"
#include "account/JsonReader.h"

std::optional<WebsocketMessage> WebsocketMessage::fromJson(const QString& text)
{
    JsonReader reader;
    if (!reader.parse(text) || reader.result().userType() != QMetaType::QVariantMap) {
        return std::nullopt;
    }
    const QVariantMap object = reader.result().toMap();
    const auto field = [&object](const char* name) {
        return AnswerFields::text(object.value(QLatin1String(name)));
    };
    return WebsocketMessage{.source = field("source"),
                            .action = field("action"),
                            .identifier = field("identifier"),
                            .profileName = field("profile_name")};
}
