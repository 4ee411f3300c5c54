// SPDX-License-Identifier: GPL-3.0-or-later
// An answer of the account service, as its body holds it, through all that reads one by itself.
#include "account/AnswerFields.h"
#include "account/Authorization.h"
#include "account/JsonReader.h"
#include "account/RequestEnvelope.h"
#include "account/ResultCodes.h"
#include "account/WindowMessages.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    JsonReader reader;
    reader.parse(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    const AnswerFields::Map answer = reader.result().toMap();
    const AnswerFields::Map fields = AnswerFields::object(answer.value(QStringLiteral("data")));
    const auto status = AnswerFields::wholeNumber(answer.value(QStringLiteral("status")));
    ResultCodes::ofSignIn(static_cast<int>(status.value_or(0)), fields);
    RequestEnvelope::forLog(answer);
    // Whoever is authorised can sign in, and was told of in full.
    if (const auto authorization = parseAuthorization(fields)) {
        if (!authorization->identity.isSignedIn() || !holdsAuthorization(fields)) {
            std::abort();
        }
    }
    for (const QVariant& entry : fields.value(QStringLiteral("messages")).toList()) {
        const std::optional<WindowMessage> message = parseWebsiteMessage(entry);
        if (message && (message->id <= 0 || message->text.isEmpty() ||
                        (!message->link.isEmpty() && message->link.host().isEmpty()))) {
            std::abort();
        }
    }
    return 0;
}
