// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/ProfileRequest.h"

#include "account/JsonReader.h"

#include <limits>

namespace ProfileRequest {

std::optional<int> profileId(const QByteArray& body)
{
    JsonReader reader;
    if (!reader.parse(body)) {
        return std::nullopt;
    }
    const QVariant id = reader.result().toMap().value(QStringLiteral("profile_id"));
    if (id.userType() != QMetaType::LongLong) {
        return std::nullopt;
    }
    const qlonglong number = id.toLongLong();
    if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    return static_cast<int>(number);
}

} // namespace ProfileRequest
