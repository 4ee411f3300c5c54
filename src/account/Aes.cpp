// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/Aes.h"

#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/kdf.h>
#include <openssl/rand.h>

#include <array>
#include <limits>
#include <memory>

namespace Aes {

namespace {

template <auto Free>
struct Deleter
{
    template <typename T>
    void operator()(T* object) const
    {
        Free(object);
    }
};

using Cipher = std::unique_ptr<EVP_CIPHER, Deleter<EVP_CIPHER_free>>;
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, Deleter<EVP_CIPHER_CTX_free>>;
using Kdf = std::unique_ptr<EVP_KDF, Deleter<EVP_KDF_free>>;
using KdfContext = std::unique_ptr<EVP_KDF_CTX, Deleter<EVP_KDF_CTX_free>>;
using Digest = std::unique_ptr<EVP_MD, Deleter<EVP_MD_free>>;

Cipher fetchCipher()
{
    return Cipher(EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr));
}

Kdf fetchKdf()
{
    return Kdf(EVP_KDF_fetch(nullptr, OSSL_KDF_NAME_HKDF, nullptr));
}

const unsigned char* bytes(const QByteArray& array)
{
    return reinterpret_cast<const unsigned char*>(array.constData());
}

unsigned char* bytes(QByteArray& array)
{
    return reinterpret_cast<unsigned char*>(array.data());
}

bool fitsInt(const QByteArray& array)
{
    return array.size() <= std::numeric_limits<int>::max();
}

/// A context that encrypts or decrypts and has taken the header in; null where that failed.
CipherContext startCipher(const QByteArray& key, const QByteArray& nonce, const QByteArray& header,
                          int encrypt)
{
    const Cipher cipher = fetchCipher();
    CipherContext context(EVP_CIPHER_CTX_new());
    if (cipher == nullptr || context == nullptr || key.size() != KeySize ||
        nonce.size() != NonceSize || !fitsInt(header)) {
        return nullptr;
    }
    int length = 0;
    const bool ok = EVP_CipherInit_ex2(context.get(), cipher.get(), bytes(key), bytes(nonce),
                                       encrypt, nullptr) == 1 &&
                    EVP_CipherUpdate(context.get(), nullptr, &length, bytes(header),
                                     static_cast<int>(header.size())) == 1;
    return ok ? std::move(context) : nullptr;
}

/// Runs `input` through the context. The mode adds no padding: the result is as long as the input.
std::optional<QByteArray> process(EVP_CIPHER_CTX* context, const QByteArray& input)
{
    QByteArray output(input.size(), Qt::Uninitialized);
    int length = 0;
    if (!input.isEmpty() && EVP_CipherUpdate(context, bytes(output), &length, bytes(input),
                                             static_cast<int>(input.size())) != 1) {
        return std::nullopt;
    }
    return length == input.size() ? std::optional(output) : std::nullopt;
}

/// Ends the operation; on decrypting, this is where the tag is compared.
bool finish(EVP_CIPHER_CTX* context)
{
    std::array<unsigned char, EVP_MAX_BLOCK_LENGTH> rest{};
    int length = 0;
    return EVP_CipherFinal_ex(context, rest.data(), &length) == 1;
}

constexpr int Decrypt = 0;
constexpr int Encrypt = 1;

} // namespace

bool isSupported()
{
    const Digest digest(EVP_MD_fetch(nullptr, "SHA256", nullptr));
    return fetchCipher() != nullptr && fetchKdf() != nullptr && digest != nullptr;
}

std::optional<QByteArray> randomBytes(qsizetype count)
{
    QByteArray result(count, Qt::Uninitialized);
    if (!fitsInt(result) || RAND_bytes(bytes(result), static_cast<int>(count)) != 1) {
        return std::nullopt;
    }
    return result;
}

std::optional<QByteArray> deriveKey(const QByteArray& secret, const QByteArray& salt,
                                    const QByteArray& purpose)
{
    const Kdf kdf = fetchKdf();
    const KdfContext context(kdf == nullptr ? nullptr : EVP_KDF_CTX_new(kdf.get()));
    if (context == nullptr || secret.isEmpty()) {
        return std::nullopt;
    }
    const auto octets = [](const char* name, const QByteArray& value) {
        // The library's parameters are not const, though it only reads them.
        return OSSL_PARAM_construct_octet_string(name, const_cast<char*>(value.constData()),
                                                 static_cast<size_t>(value.size()));
    };
    std::array<char, 7> digest{"SHA256"};
    const std::array parameters{
        OSSL_PARAM_construct_utf8_string(OSSL_KDF_PARAM_DIGEST, digest.data(), 0),
        octets(OSSL_KDF_PARAM_KEY, secret), octets(OSSL_KDF_PARAM_SALT, salt),
        octets(OSSL_KDF_PARAM_INFO, purpose), OSSL_PARAM_construct_end()};
    QByteArray key(KeySize, Qt::Uninitialized);
    if (EVP_KDF_derive(context.get(), bytes(key), KeySize, parameters.data()) != 1) {
        return std::nullopt;
    }
    return key;
}

std::optional<QByteArray> seal(const QByteArray& key, const QByteArray& nonce,
                               const QByteArray& plain, const QByteArray& header)
{
    const CipherContext context = startCipher(key, nonce, header, Encrypt);
    if (context == nullptr || !fitsInt(plain)) {
        return std::nullopt;
    }
    const std::optional<QByteArray> encrypted = process(context.get(), plain);
    QByteArray tag(TagSize, Qt::Uninitialized);
    if (!encrypted || !finish(context.get()) ||
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_GET_TAG, TagSize, tag.data()) != 1) {
        return std::nullopt;
    }
    return *encrypted + tag;
}

std::optional<QByteArray> open(const QByteArray& key, const QByteArray& nonce,
                               const QByteArray& sealed, const QByteArray& header)
{
    const CipherContext context = startCipher(key, nonce, header, Decrypt);
    if (context == nullptr || !fitsInt(sealed) || sealed.size() < TagSize) {
        return std::nullopt;
    }
    QByteArray tag = sealed.last(TagSize);
    std::optional<QByteArray> plain = process(context.get(), sealed.chopped(TagSize));
    if (!plain ||
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_SET_TAG, TagSize, tag.data()) != 1 ||
        !finish(context.get())) {
        return std::nullopt;
    }
    return plain;
}

} // namespace Aes
