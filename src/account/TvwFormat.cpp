// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/TvwFormat.h"

#include "account/Aes.h"

#include <QCborMap>
#include <QCborValue>
#include <QtEndian>

namespace Tvw {

namespace {

constexpr QByteArrayView Magic{"TALLYTVW"};
constexpr quint16 Version = 1;
constexpr qsizetype VersionOffset = Magic.size();
constexpr qsizetype SaltOffset = VersionOffset + static_cast<qsizetype>(sizeof Version);
constexpr qsizetype NonceOffset = SaltOffset + SaltSize;
constexpr qsizetype HeaderSize = NonceOffset + Aes::NonceSize;

constexpr QLatin1String GenerationField("generation");
constexpr QLatin1String TotalsField("totals");
constexpr QLatin1String ApplicationsField("applications");

std::optional<QByteArray> keyFor(const QByteArray& machineId, const QByteArray& salt)
{
    // The manual page machine-id(5) asks that the id is never used as it is, only hashed together
    // with something of the application's own: here the purpose. HKDF accepts no empty secret.
    const QByteArray secret = machineId.isEmpty() ? QByteArrayLiteral("no machine id") : machineId;
    return Aes::deriveKey(secret, salt, QByteArrayLiteral("tallyvane unzurged counts"));
}

QByteArray header(const QByteArray& salt, const QByteArray& nonce)
{
    QByteArray version(sizeof Version, Qt::Uninitialized);
    qToBigEndian(Version, version.data());
    return Magic.toByteArray() + version + salt + nonce;
}

QCborMap toMap(const UnzurgedCounts& counts)
{
    QCborMap map;
    for (const UnzurgedCounter& counter : UnzurgedCounters) {
        if (const quint64 value = counts.*counter.value; value != 0) {
            map.insert(counter.name, static_cast<qint64>(value));
        }
    }
    return map;
}

/// The count in `value`: missing means 0; nothing where it is no count.
std::optional<quint64> countFrom(const QCborValue& value)
{
    if (value.isUndefined()) {
        return 0;
    }
    if (!value.isInteger() || value.toInteger() < 0) {
        return std::nullopt;
    }
    return static_cast<quint64>(value.toInteger());
}

std::optional<UnzurgedCounts> countsFrom(const QCborValue& value)
{
    if (!value.isMap()) {
        return std::nullopt;
    }
    const QCborMap map = value.toMap();
    UnzurgedCounts counts;
    for (const UnzurgedCounter& counter : UnzurgedCounters) {
        const std::optional<quint64> count = countFrom(map.value(counter.name));
        if (!count) {
            return std::nullopt;
        }
        counts.*counter.value = *count;
    }
    return counts;
}

std::optional<QHash<QString, UnzurgedCounts>> applicationsFrom(const QCborValue& value)
{
    if (!value.isMap()) {
        return std::nullopt;
    }
    QHash<QString, UnzurgedCounts> applications;
    for (const auto& [path, entry] : value.toMap()) {
        const std::optional<UnzurgedCounts> counts = countsFrom(entry);
        if (!path.isString() || !counts) {
            return std::nullopt;
        }
        applications.insert(path.toString(), *counts);
    }
    return applications;
}

Fault checkHeader(const QByteArray& bytes)
{
    if (!bytes.startsWith(Magic.first(qMin(Magic.size(), bytes.size())))) {
        return Fault::Foreign;
    }
    if (bytes.size() < HeaderSize + Aes::TagSize) {
        return Fault::Truncated;
    }
    const auto version = qFromBigEndian<quint16>(bytes.constData() + VersionOffset);
    return version == Version ? Fault::None : Fault::UnknownVersion;
}

} // namespace

QByteArray encodePayload(const UnzurgedState& state)
{
    QCborMap applications;
    for (auto it = state.applications.cbegin(); it != state.applications.cend(); ++it) {
        applications.insert(it.key(), toMap(it.value()));
    }
    const QCborMap map{{GenerationField, static_cast<qint64>(state.generation)},
                       {TotalsField, toMap(state.totals)},
                       {ApplicationsField, applications}};
    return map.toCborValue().toCbor();
}

std::optional<UnzurgedState> decodePayload(const QByteArray& payload)
{
    QCborParserError error;
    const QCborValue value = QCborValue::fromCbor(payload, &error);
    if (error.error != QCborError::NoError || !value.isMap()) {
        return std::nullopt;
    }
    const QCborMap map = value.toMap();
    const auto generation = countFrom(map.value(GenerationField));
    const auto totals = countsFrom(map.value(TotalsField));
    auto applications = applicationsFrom(map.value(ApplicationsField));
    if (!generation || !totals || !applications) {
        return std::nullopt;
    }
    return UnzurgedState{*generation, *totals, *std::move(applications)};
}

std::optional<QByteArray> encode(const UnzurgedState& state, const QByteArray& salt,
                                 const QByteArray& machineId)
{
    Q_ASSERT(salt.size() == SaltSize);
    const std::optional<QByteArray> nonce = Aes::randomBytes(Aes::NonceSize);
    const std::optional<QByteArray> key = keyFor(machineId, salt);
    if (!nonce || !key) {
        return std::nullopt;
    }
    const QByteArray head = header(salt, *nonce);
    const auto sealed = Aes::seal(*key, *nonce, encodePayload(state), head);
    return sealed ? std::optional(head + *sealed) : std::nullopt;
}

Decoded decode(const QByteArray& bytes, const QByteArray& machineId)
{
    if (const Fault fault = checkHeader(bytes); fault != Fault::None) {
        return {fault, {}, {}};
    }
    const QByteArray salt = bytes.mid(SaltOffset, SaltSize);
    const std::optional<QByteArray> key = keyFor(machineId, salt);
    if (!key) {
        return {Fault::Unavailable, {}, {}};
    }
    const auto payload = Aes::open(*key, bytes.mid(NonceOffset, Aes::NonceSize),
                                   bytes.mid(HeaderSize), bytes.first(HeaderSize));
    if (!payload) {
        return {Fault::Sealed, {}, {}};
    }
    const std::optional<UnzurgedState> state = decodePayload(*payload);
    return state ? Decoded{Fault::None, salt, *state} : Decoded{Fault::Payload, {}, {}};
}

} // namespace Tvw
