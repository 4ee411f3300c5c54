// SPDX-License-Identifier: GPL-3.0-or-later
// The ".tvw" file as found on disk, and the payload behind its seal, which no change to the file
// alone reaches.
#include "account/TvwFormat.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    Tvw::decode(bytes, QByteArrayLiteral("0123456789abcdef"));
    if (const auto content = Tvw::decodePayload(bytes)) {
        // Whatever is accepted can be written, and reads the same again.
        if (Tvw::decodePayload(Tvw::encodePayload(*content)) != content) {
            std::abort();
        }
    }
    return 0;
}
