// SPDX-License-Identifier: GPL-3.0-or-later
// What the service tells of zurges and totals, as any JSON object.
#include "account/EarlierTotals.h"
#include "account/JsonReader.h"
#include "account/ZurgeAnswer.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    JsonReader reader;
    if (!reader.parse(bytes)) {
        return 0;
    }
    const QVariantMap object = reader.result().toMap();
    EarlierTotals::from(object);
    AccountInfo::from(object);
    if (const auto answer = ZurgeAnswer::from(object)) {
        const OnlineTotals& totals = answer->totals;
        if (answer->token.isEmpty() || totals.keys < 0 || totals.download < 0 ||
            answer->ranks.distance < 0 || !(totals.distanceMiles >= 0) ||
            std::isinf(totals.distanceMiles)) {
            std::abort();
        }
    }
    return 0;
}
