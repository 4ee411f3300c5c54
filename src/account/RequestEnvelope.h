// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/AccountIdentity.h"

#include <QMap>
#include <QString>
#include <QVariant>

#include <optional>

/// The JSON object that every request to the account service is wrapped in. Any thread.
namespace RequestEnvelope {

using Map = QMap<QString, QVariant>;

/// The envelope's text, on one line; nothing, and a log line, where `data` cannot be written. An
/// empty `clientToken` is left out.
std::optional<QString> text(const QString& requestType, const QString& clientToken,
                            const Map& data);

/// The envelope that signs `identity` in.
std::optional<QString> signInText(const AccountIdentity& identity);

/// What the log may show of a request's or an answer's data: single values, of lists and objects
/// only how long they are, of secret fields nothing.
QString forLog(const Map& data);

} // namespace RequestEnvelope
