// SPDX-License-Identifier: GPL-3.0-or-later
// A reply of the account service: whatever is accepted can be written, and reads the same again.
#include "account/JsonReader.h"
#include "account/JsonWriter.h"
#include "account/Redacted.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    (void)redacted(QString::fromUtf8(bytes));
    JsonReader reader;
    if (!reader.parse(bytes)) {
        if (!reader.result().isNull() || reader.errorString().isEmpty()) {
            std::abort();
        }
        return 0;
    }
    JsonWriter writer;
    JsonReader again;
    if (!writer.stringify(reader.result()) || !again.parse(writer.result()) ||
        again.result() != reader.result()) {
        std::abort();
    }
    return 0;
}
