// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <optional>

/// What the body of a request to activate a profile asks for. Pure function, for any thread.
namespace ProfileRequest {

/// The "profile_id" of a JSON object. Nothing where the body is no such object, or the id no whole
/// number that an int holds: a text of digits is none.
std::optional<int> profileId(const QByteArray& body);

} // namespace ProfileRequest
