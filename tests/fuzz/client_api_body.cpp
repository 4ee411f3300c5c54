// SPDX-License-Identifier: GPL-3.0-or-later
// The body of a request to activate a profile: the id that is read, written as such a body, reads
// the same.
#include "clientapi/ProfileRequest.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray body(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const std::optional<int> id = ProfileRequest::profileId(body);
    if (id && ProfileRequest::profileId("{\"profile_id\":" + QByteArray::number(*id) + '}') != id) {
        std::abort();
    }
    return 0;
}
