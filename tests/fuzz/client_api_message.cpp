// SPDX-License-Identifier: GPL-3.0-or-later
// A message of a WebSocket client: what is read from it, written as a message, reads the same.
#include "clientapi/WebsocketMessage.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // As it comes out of the WebSocket: decoded, and so without half of a surrogate pair.
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const std::optional<WebsocketMessage> message = WebsocketMessage::fromJson(text);
    if (!message) {
        return 0;
    }
    QJsonObject object{{QStringLiteral("source"), message->source},
                       {QStringLiteral("action"), message->action},
                       {QStringLiteral("identifier"), message->identifier}};
    if (message->profileName) {
        object.insert(QStringLiteral("profile_name"), *message->profileName);
    }
    if (WebsocketMessage::fromJson(QString::fromUtf8(QJsonDocument(object).toJson())) != message) {
        std::abort();
    }
    return 0;
}
