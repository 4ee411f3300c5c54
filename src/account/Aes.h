// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <optional>

/// Authenticated encryption with AES-256 in Galois/counter mode (NIST SP 800-38D), and what it
/// needs: random bytes and keys derived with HKDF-SHA256 (RFC 5869). Every operation returns
/// nothing where the library refuses or the input does not fit. Any thread.
namespace Aes {

inline constexpr qsizetype KeySize = 32;
inline constexpr qsizetype NonceSize = 12;
inline constexpr qsizetype TagSize = 16;

/// Whether the cryptographic library offers all of the operations below.
bool isSupported();

/// `count` bytes fit for keys, salts and nonces.
std::optional<QByteArray> randomBytes(qsizetype count);

/// A key of `KeySize` bytes. `secret` may not be empty; `purpose` keeps keys for different uses of
/// one secret apart.
std::optional<QByteArray> deriveKey(const QByteArray& secret, const QByteArray& salt,
                                    const QByteArray& purpose);

/// Encrypts `plain`, and authenticates it together with `header`. Returns the ciphertext, as long
/// as `plain`, followed by the tag. A nonce may be used once with a key.
std::optional<QByteArray> seal(const QByteArray& key, const QByteArray& nonce,
                               const QByteArray& plain, const QByteArray& header);

/// The plain text of what `seal` returned; nothing where any bit of it, or of `header`, differs.
std::optional<QByteArray> open(const QByteArray& key, const QByteArray& nonce,
                               const QByteArray& sealed, const QByteArray& header);

} // namespace Aes
