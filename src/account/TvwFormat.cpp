// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/TvwFormat.h"

#include "account/Aes.h"

#include <QCborMap>
#include <QCborValue>
#include <QtEndian>

namespace Tvw {

namespace {

constexpr QByteArrayView Magic{"TALLYTVW"};
constexpr quint16 Version = 2;
constexpr quint16 OldestVersion = 1;
constexpr qsizetype VersionOffset = Magic.size();
constexpr qsizetype SaltOffset = VersionOffset + static_cast<qsizetype>(sizeof Version);
constexpr qsizetype NonceOffset = SaltOffset + SaltSize;
constexpr qsizetype HeaderSize = NonceOffset + Aes::NonceSize;

constexpr QLatin1String GenerationField("generation");
constexpr QLatin1String TotalsField("totals");
constexpr QLatin1String ApplicationsField("applications");
constexpr QLatin1String LineageField("lineage");
constexpr QLatin1String SettledField("settled");
constexpr QLatin1String AccountField("account");
constexpr QLatin1String UserIdField("user_id");
constexpr QLatin1String ComputerIdField("computer_id");
constexpr QLatin1String EmailField("email");
constexpr QLatin1String UserNameField("user_name");
constexpr QLatin1String ComputerField("computer");
constexpr QLatin1String PasswordHashField("password_hash");
constexpr QLatin1String ZurgeTokenField("zurge_token");
constexpr QLatin1String LastZurgeField("last_zurge");
constexpr QLatin1String InFlightField("in_flight");
constexpr QLatin1String TokenField("token");
constexpr QLatin1String TimeField("time");

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

QCborMap toMap(const QHash<QString, UnzurgedCounts>& applications)
{
    QCborMap map;
    for (auto it = applications.cbegin(); it != applications.cend(); ++it) {
        map.insert(it.key(), toMap(it.value()));
    }
    return map;
}

void insertText(QCborMap& map, QLatin1String field, const QString& text)
{
    if (!text.isEmpty()) {
        map.insert(field, text);
    }
}

void insertNumber(QCborMap& map, QLatin1String field, qint64 number)
{
    if (number != 0) {
        map.insert(field, number);
    }
}

/// Milliseconds since the epoch that a date can be made of, up to the year 9999.
bool isTime(qint64 msecs)
{
    constexpr qint64 latest = 253'402'300'799'999;
    return msecs >= 0 && msecs <= latest;
}

void insertTime(QCborMap& map, QLatin1String field, const QDateTime& time)
{
    if (time.isValid() && isTime(time.toMSecsSinceEpoch())) {
        map.insert(field, time.toMSecsSinceEpoch());
    }
}

QCborMap toMap(const ZurgeInFlight& inFlight)
{
    QCborMap map{{TotalsField, toMap(inFlight.totals)},
                 {ApplicationsField, toMap(inFlight.applications)}};
    insertText(map, TokenField, inFlight.token);
    insertTime(map, TimeField, inFlight.time);
    insertNumber(map, UserIdField, inFlight.userId);
    insertNumber(map, ComputerIdField, inFlight.computerId);
    return map;
}

QCborMap toMap(const AccountRecord& account)
{
    QCborMap map;
    insertNumber(map, UserIdField, account.identity.userId);
    insertNumber(map, ComputerIdField, account.identity.computerId);
    insertText(map, EmailField, account.identity.email);
    insertText(map, UserNameField, account.identity.userName);
    insertText(map, ComputerField, account.identity.computer);
    insertText(map, PasswordHashField, account.identity.passwordHash);
    insertText(map, ZurgeTokenField, account.zurgeToken);
    insertTime(map, LastZurgeField, account.lastZurge);
    if (account.inFlight) {
        map.insert(InFlightField, toMap(*account.inFlight));
    }
    return map;
}

/// Reads the fields of one map, each of which may be missing; remembers whether one was of another
/// type than its own.
class FieldReader final
{
public:
    explicit FieldReader(const QCborMap& map)
        : m_map(map)
    {
    }

    bool isWellFormed() const { return m_isWellFormed; }

    QString text(QLatin1String field)
    {
        return take(field, &QCborValue::isString) ? m_map.value(field).toString() : QString();
    }

    qint64 number(QLatin1String field)
    {
        return take(field, &QCborValue::isInteger) ? m_map.value(field).toInteger() : 0;
    }

    QDateTime time(QLatin1String field)
    {
        if (!take(field, &QCborValue::isInteger)) {
            return {};
        }
        const qint64 msecs = m_map.value(field).toInteger();
        m_isWellFormed = m_isWellFormed && isTime(msecs);
        return QDateTime::fromMSecsSinceEpoch(isTime(msecs) ? msecs : 0);
    }

private:
    /// Whether the field is there, and is what `isRight` asks for.
    bool take(QLatin1String field, bool (QCborValue::*isRight)() const)
    {
        const QCborValue value = m_map.value(field);
        const bool right = (value.*isRight)();
        m_isWellFormed = m_isWellFormed && (right || value.isUndefined());
        return right;
    }

    QCborMap m_map;
    bool m_isWellFormed = true;
};

std::optional<ZurgeInFlight> inFlightFrom(const QCborValue& value)
{
    if (!value.isMap()) {
        return std::nullopt;
    }
    const QCborMap map = value.toMap();
    FieldReader fields(map);
    ZurgeInFlight inFlight{.token = fields.text(TokenField),
                           .time = fields.time(TimeField),
                           .totals = {},
                           .applications = {},
                           .userId = fields.number(UserIdField),
                           .computerId = fields.number(ComputerIdField)};
    const auto totals = countsFrom(map.value(TotalsField));
    auto applications = applicationsFrom(map.value(ApplicationsField));
    if (!fields.isWellFormed() || !totals || !applications) {
        return std::nullopt;
    }
    inFlight.totals = *totals;
    inFlight.applications = *std::move(applications);
    return inFlight;
}

/// A missing one is that of nobody: version 1 had none.
std::optional<AccountRecord> accountFrom(const QCborValue& value)
{
    if (!value.isMap()) {
        return value.isUndefined() ? std::optional(AccountRecord()) : std::nullopt;
    }
    const QCborMap map = value.toMap();
    FieldReader fields(map);
    AccountRecord account;
    account.identity.userId = fields.number(UserIdField);
    account.identity.computerId = fields.number(ComputerIdField);
    account.identity.email = fields.text(EmailField);
    account.identity.userName = fields.text(UserNameField);
    account.identity.computer = fields.text(ComputerField);
    account.identity.passwordHash = fields.text(PasswordHashField);
    account.zurgeToken = fields.text(ZurgeTokenField);
    account.lastZurge = fields.time(LastZurgeField);
    if (const QCborValue sent = map.value(InFlightField); !sent.isUndefined()) {
        account.inFlight = inFlightFrom(sent);
        if (!account.inFlight) {
            return std::nullopt;
        }
    }
    return fields.isWellFormed() ? std::optional(std::move(account)) : std::nullopt;
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
    return version >= OldestVersion && version <= Version ? Fault::None : Fault::UnknownVersion;
}

} // namespace

QByteArray encodePayload(const TvwContent& content)
{
    const UnzurgedState& counts = content.counts;
    QCborMap map{{GenerationField, static_cast<qint64>(counts.generation)},
                 {TotalsField, toMap(counts.totals)},
                 {ApplicationsField, toMap(counts.applications)},
                 {AccountField, toMap(content.account)}};
    insertText(map, LineageField, counts.lineage);
    insertNumber(map, SettledField, static_cast<qint64>(counts.settled));
    return map.toCborValue().toCbor();
}

std::optional<TvwContent> decodePayload(const QByteArray& payload)
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
    const auto settled = countFrom(map.value(SettledField));
    auto account = accountFrom(map.value(AccountField));
    FieldReader fields(map);
    const QString lineage = fields.text(LineageField);
    if (!generation || !totals || !applications || !settled || !account || !fields.isWellFormed()) {
        return std::nullopt;
    }
    return TvwContent{{*generation, *totals, *std::move(applications), lineage, *settled},
                      *std::move(account)};
}

std::optional<QByteArray> encode(const TvwContent& content, const QByteArray& salt,
                                 const QByteArray& machineId)
{
    Q_ASSERT(salt.size() == SaltSize);
    const std::optional<QByteArray> nonce = Aes::randomBytes(Aes::NonceSize);
    const std::optional<QByteArray> key = keyFor(machineId, salt);
    if (!nonce || !key) {
        return std::nullopt;
    }
    const QByteArray head = header(salt, *nonce);
    const auto sealed = Aes::seal(*key, *nonce, encodePayload(content), head);
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
    std::optional<TvwContent> content = decodePayload(*payload);
    return content ? Decoded{Fault::None, salt, *std::move(content)}
                   : Decoded{Fault::Payload, {}, {}};
}

} // namespace Tvw
