// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

/// A message of a WebSocket client. Plain value; what is not there, or is no text, is empty.
struct WebsocketMessage
{
    QString source;
    QString action;
    QString identifier;
    std::optional<QString> profileName; ///< "profile_name".

    /// Nothing where the text is no JSON object. Depth is bounded by `JsonReader`, size by who
    /// received it.
    static std::optional<WebsocketMessage> fromJson(const QString& text);

    friend bool operator==(const WebsocketMessage&, const WebsocketMessage&) = default;
};
