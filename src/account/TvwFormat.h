// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/AccountRecord.h"
#include "account/UnzurgedCounts.h"

#include <QByteArray>

#include <optional>

/// What the ".tvw" file holds. Plain value.
struct TvwContent
{
    UnzurgedState counts;
    AccountRecord account;

    friend bool operator==(const TvwContent&, const TvwContent&) = default;
};

/// The bytes of the ".tvw" file, which keeps the unzurged counts, and who they are for, between two
/// runs.
///
/// | offset | bytes | field |
/// |-------:|------:|---------------------------------------------------------------|
/// |      0 |     8 | magic, "TALLYTVW" |
/// |      8 |     2 | format version, big-endian: 2; 1, without account and lineage, is read |
/// |     10 |    16 | salt, random, the same for as long as the file lives |
/// |     26 |    12 | nonce, random, another one at each save |
/// |     38 |     n | payload, encrypted with AES-256-GCM |
/// | 38 + n |    16 | tag, over the header (offsets 0 to 37) and the encrypted payload |
///
/// The key is HKDF-SHA256 of this machine's id under the salt. Encryption here notices damage and
/// keeps the file to the machine it was written on; it is no secret from this user's own programs.
///
/// The payload is a CBOR map (RFC 8949) of these fields: "generation" (integer), "lineage" (text),
/// "settled" (integer), "totals" (map of the seven counters by the names of `UnzurgedCounters`),
/// "applications" (map from executable path to such a map), "account" (map). Counters that are zero
/// are left out, and so are texts that are empty and numbers that are zero in "account":
///
///  - "user_id", "computer_id" (integers); "email", "user_name", "computer", "password_hash",
///    "zurge_token" (texts); "last_zurge" (integer, milliseconds since the epoch);
///  - "in_flight" (map): "token" (text), "time" (as "last_zurge"), "totals", "applications",
///    "user_id", "computer_id" (as above, of those who sent it). Absent where every zurge was
///    answered.
///
/// Fields this version does not know are skipped and not written again: a change that an older
/// client must not lose raises the version.
namespace Tvw {

inline constexpr qsizetype SaltSize = 16;

/// Why bytes were not understood.
enum class Fault
{
    None,
    Truncated,      ///< Shorter than a header and a tag.
    Foreign,        ///< No magic: some other kind of file.
    UnknownVersion, ///< Written by another version of the program.
    Sealed,         ///< The tag does not match: changed, cut, or written on another machine.
    Payload,        ///< Authentic, but not the map described above.
    Unavailable,    ///< The cryptographic library failed; says nothing about the bytes.
};

struct Decoded
{
    Fault fault = Fault::None;
    QByteArray salt;    ///< Empty unless decoded.
    TvwContent content; ///< Meaningful only without a fault.
};

/// Encrypts `content` under `salt` (`SaltSize` bytes) for the machine `machineId`, which may be
/// empty. Nothing where the cryptographic library fails.
std::optional<QByteArray> encode(const TvwContent& content, const QByteArray& salt,
                                 const QByteArray& machineId);

/// Takes any bytes.
Decoded decode(const QByteArray& bytes, const QByteArray& machineId);

QByteArray encodePayload(const TvwContent& content);

/// Takes any bytes; nothing where they are not such a payload.
std::optional<TvwContent> decodePayload(const QByteArray& payload);

} // namespace Tvw
