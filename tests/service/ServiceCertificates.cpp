// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceCertificates.h"

#include <QByteArray>

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <memory>

namespace {

template <auto Free>
struct Release
{
    template <typename Object>
    void operator()(Object* object) const
    {
        Free(object);
    }
};

using Key = std::unique_ptr<EVP_PKEY, Release<&EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<&X509_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Release<&X509_EXTENSION_free>>;
using Memory = std::unique_ptr<BIO, Release<&BIO_free_all>>;

constexpr long Year = 365L * 24 * 60 * 60;

QByteArray content(BIO* memory)
{
    char* data = nullptr;
    const long size = BIO_get_mem_data(memory, &data);
    return {data, static_cast<qsizetype>(size)};
}

QByteArray pem(X509* certificate)
{
    const Memory memory(BIO_new(BIO_s_mem()));
    PEM_write_bio_X509(memory.get(), certificate);
    return content(memory.get());
}

QByteArray pem(EVP_PKEY* key)
{
    const Memory memory(BIO_new(BIO_s_mem()));
    PEM_write_bio_PrivateKey(memory.get(), key, nullptr, nullptr, 0, nullptr, nullptr);
    return content(memory.get());
}

void addExtension(X509* certificate, X509* issuer, int kind, const char* value)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const Extension extension(X509V3_EXT_conf_nid(nullptr, &context, kind, value));
    X509_add_ext(certificate, extension.get(), -1);
}

void setName(X509_NAME* name, const char* commonName)
{
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(commonName), -1, -1, 0);
}

void setSerial(X509* certificate)
{
    // A client refuses two certificates of one issuer and one number.
    unsigned char bytes[8];
    RAND_bytes(bytes, sizeof bytes);
    bytes[0] &= 0x7f;
    const std::unique_ptr<BIGNUM, Release<&BN_free>> number(
        BN_bin2bn(bytes, sizeof bytes, nullptr));
    BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate));
}

/// Not signed yet. Valid for long, since tests shift the clock.
Certificate certificate(EVP_PKEY* key, const char* commonName)
{
    Certificate made(X509_new());
    X509_set_version(made.get(), X509_VERSION_3);
    setSerial(made.get());
    X509_gmtime_adj(X509_getm_notBefore(made.get()), -10 * Year);
    X509_gmtime_adj(X509_getm_notAfter(made.get()), 10 * Year);
    X509_set_pubkey(made.get(), key);
    setName(X509_get_subject_name(made.get()), commonName);
    return made;
}

} // namespace

ServiceCertificates ServiceCertificates::make(const char* names)
{
    ServiceCertificates made;
    const Key authorityKey(EVP_EC_gen("P-256"));
    const Key serverKey(EVP_EC_gen("P-256"));
    if (!authorityKey || !serverKey) {
        return made;
    }
    const Certificate authority = certificate(authorityKey.get(), "Tallyvane test authority");
    X509_set_issuer_name(authority.get(), X509_get_subject_name(authority.get()));
    addExtension(authority.get(), authority.get(), NID_basic_constraints, "critical,CA:TRUE");
    addExtension(authority.get(), authority.get(), NID_key_usage, "critical,keyCertSign");
    X509_sign(authority.get(), authorityKey.get(), EVP_sha256());

    const Certificate server = certificate(serverKey.get(), "localhost");
    X509_set_issuer_name(server.get(), X509_get_subject_name(authority.get()));
    addExtension(server.get(), authority.get(), NID_subject_alt_name, names);
    addExtension(server.get(), authority.get(), NID_ext_key_usage, "serverAuth");
    X509_sign(server.get(), authorityKey.get(), EVP_sha256());

    made.authority = QSslCertificate(pem(authority.get()));
    made.server = QSslCertificate(pem(server.get()));
    made.serverKey = QSslKey(pem(serverKey.get()), QSsl::Ec);
    return made;
}
