// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceStore.h"

#include <QRandomGenerator>

namespace {

constexpr double InchesPerMile = 63360;

QString randomText()
{
    std::array<quint32, 4> words{};
    QRandomGenerator::system()->fillRange(words.data(), static_cast<qsizetype>(words.size()));
    const QByteArray bytes(reinterpret_cast<const char*>(words.data()), sizeof words);
    return QString::fromLatin1(bytes.toHex());
}

QVariantList asValues(const ServiceCounts& counts)
{
    return QVariantList(counts.begin(), counts.end());
}

/// The account's name for the distance differs, since its unit does.
QLatin1String accountName(QLatin1String counter)
{
    return counter == QLatin1String("distance_inches") ? QLatin1String("distance") : counter;
}

} // namespace

ServiceStore::ServiceStore(ServiceDatabase& database)
    : m_database(database)
{
}

QString ServiceStore::now() const
{
    return QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

qint64 ServiceStore::nowSeconds() const
{
    return QDateTime::currentSecsSinceEpoch();
}

qint64 ServiceStore::account(const QString& userName, Activation activation)
{
    m_database.run(
        QStringLiteral("INSERT OR IGNORE INTO accounts (username, email, activated) "
                       "VALUES (?, ?, ?)"),
        {userName, userName + QStringLiteral("@example.com"), activation == Activation::Done});
    return m_database
        .value(QStringLiteral("SELECT id FROM accounts WHERE username = ?"), {userName})
        .toLongLong();
}

QStringList ServiceStore::userNames()
{
    QStringList names;
    QSqlQuery query = m_database.run(QStringLiteral("SELECT username FROM accounts ORDER BY 1"));
    while (query.next()) {
        names << query.value(0).toString();
    }
    return names;
}

ServiceComputer ServiceStore::computerNamed(qint64 accountId, const QString& name)
{
    m_database.run(QStringLiteral("INSERT OR IGNORE INTO computers "
                                  "(account_id, name, password_hash, zurge_token) "
                                  "VALUES (?, ?, ?, ?)"),
                   {accountId, name, randomText(), randomText()});
    return *computerWhere(QStringLiteral("account_id = ? AND name = ?"), {accountId, name});
}

std::optional<ServiceComputer> ServiceStore::computer(qint64 accountId, qint64 computerId)
{
    return computerWhere(QStringLiteral("account_id = ? AND computers.id = ?"),
                         {accountId, computerId});
}

std::optional<ServiceComputer> ServiceStore::computerWhere(const QString& condition,
                                                           const QVariantList& values)
{
    QSqlQuery query = m_database.run(
        QStringLiteral("SELECT computers.id, account_id, name, password_hash, zurge_token, "
                       "last_zurge, archived, activated FROM computers "
                       "JOIN accounts ON accounts.id = account_id WHERE ") +
            condition,
        values);
    if (!query.next()) {
        return std::nullopt;
    }
    return ServiceComputer{.id = query.value(0).toLongLong(),
                           .accountId = query.value(1).toLongLong(),
                           .name = query.value(2).toString(),
                           .passwordHash = query.value(3).toString(),
                           .zurgeToken = query.value(4).toString(),
                           .lastZurge = query.value(5).toString(),
                           .archived = query.value(6).toBool(),
                           .activated = query.value(7).toBool()};
}

void ServiceStore::setArchived(qint64 computerId, bool archived)
{
    m_database.run(QStringLiteral("UPDATE computers SET archived = ? WHERE id = ?"),
                   {archived, computerId});
}

QString ServiceStore::newClientToken(const ServiceComputer& computer)
{
    QString token = randomText();
    m_database.run(QStringLiteral("DELETE FROM client_tokens WHERE computer_id = ?"),
                   {computer.id});
    m_database.run(QStringLiteral("INSERT INTO client_tokens VALUES (?, ?, ?)"),
                   {token, computer.id, nowSeconds()});
    return token;
}

std::optional<ServiceComputer> ServiceStore::clientTokenOwner(const QString& token)
{
    return computerWhere(QStringLiteral("computers.id = (SELECT computer_id FROM client_tokens "
                                        "WHERE token = ? AND begun_at >= ?)"),
                         {token, nowSeconds() - ClientTokenSeconds});
}

void ServiceStore::forgetClientToken(const QString& token)
{
    m_database.run(QStringLiteral("DELETE FROM client_tokens WHERE token = ?"), {token});
}

void ServiceStore::forgetClientTokens()
{
    m_database.run(QStringLiteral("DELETE FROM client_tokens"));
}

void ServiceStore::expectClient(const QString& clientUid)
{
    m_database.run(QStringLiteral("INSERT OR REPLACE INTO authorizations VALUES (?, ?, NULL)"),
                   {clientUid, nowSeconds()});
}

bool ServiceStore::isExpected(const QString& clientUid)
{
    return m_database
        .value(QStringLiteral("SELECT 1 FROM authorizations WHERE client_uid = ? "
                              "AND begun_at >= ?"),
               {clientUid, nowSeconds() - AuthorizationSeconds})
        .isValid();
}

void ServiceStore::agree(const QString& clientUid, const ServiceComputer& computer)
{
    m_database.run(QStringLiteral("UPDATE authorizations SET computer_id = ? "
                                  "WHERE client_uid = ?"),
                   {computer.id, clientUid});
}

std::optional<ServiceComputer> ServiceStore::authorizedComputer(const QString& clientUid)
{
    return computerWhere(QStringLiteral("computers.id = (SELECT computer_id FROM authorizations "
                                        "WHERE client_uid = ?)"),
                         {clientUid});
}

std::optional<QString> ServiceStore::takeZurge(qint64 computerId, const ServiceZurge& zurge)
{
    ServiceDatabase::Transaction transaction(m_database);
    const QString token = randomText();
    const QSqlQuery query =
        m_database.run(QStringLiteral("UPDATE computers SET zurge_token = ?, last_zurge = ? "
                                      "WHERE id = ? AND zurge_token = ?"),
                       {token, now(), computerId, zurge.token});
    if (query.numRowsAffected() != 1) {
        return std::nullopt;
    }
    addCounts(computerId, zurge.counts);
    keepZurge(computerId, zurge);
    for (auto it = zurge.timeSeries.begin(); it != zurge.timeSeries.end(); ++it) {
        keepHour(computerId, it.key(), it.value().toObject());
    }
    transaction.commit();
    return token;
}

void ServiceStore::addCounts(qint64 computerId, const ServiceCounts& counts)
{
    for (std::size_t i = 0; i < counts.size(); ++i) {
        // Stays at the largest number, which SQLite would turn into a fraction otherwise.
        const QString sum = QStringLiteral("SET %1 = %1 + MIN(?, 9223372036854775807 - %1) ")
                                .arg(ServiceCounterNames.at(i));
        m_database.run(QStringLiteral("UPDATE computers ") + sum + QStringLiteral("WHERE id = ?"),
                       {counts.at(i), computerId});
        m_database.run(QStringLiteral("UPDATE accounts ") + sum +
                           QStringLiteral("WHERE id = (SELECT account_id FROM computers "
                                          "WHERE computers.id = ?)"),
                       {counts.at(i), computerId});
    }
}

void ServiceStore::keepZurge(qint64 computerId, const ServiceZurge& zurge)
{
    const QVariant id =
        m_database
            .run(QStringLiteral("INSERT INTO zurges (computer_id, taken_at, mechanism, keys, "
                                "clicks, download, upload, uptime, scrolls, distance_inches) "
                                "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                 QVariantList{computerId, now(), zurge.mechanism} + asValues(zurge.counts))
            .lastInsertId();
    for (const QJsonValue entry : zurge.applications) {
        const QJsonObject application = entry.toObject();
        QVariantList values{id, application.value(QLatin1String("id")).toInteger()};
        for (const QLatin1String counter : ServiceCounterNames) {
            values << application.value(counter).toInteger();
        }
        values << application.value(QLatin1String("lastused")).toString();
        m_database.run(QStringLiteral("INSERT INTO zurge_applications "
                                      "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                       values);
    }
}

void ServiceStore::keepHour(qint64 computerId, const QString& hour, const QJsonObject& counts)
{
    QVariantList values{computerId, hour};
    for (const QLatin1String counter : ServiceCounterNames) {
        values << counts.value(counter).toVariant();
    }
    m_database.run(QStringLiteral("INSERT OR REPLACE INTO time_series (computer_id, hour, keys, "
                                  "clicks, download, upload, uptime, scrolls, distance_inches) "
                                  "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                   values);
}

QJsonObject ServiceStore::totals(qint64 accountId)
{
    QSqlQuery query = m_database.run(
        QStringLiteral("SELECT keys, clicks, download, upload, uptime, scrolls, distance_inches "
                       "FROM accounts WHERE id = ?"),
        {accountId});
    QJsonObject totals;
    if (!query.next()) {
        return totals;
    }
    for (const QLatin1String counter : ServiceCounterNames) {
        totals.insert(counter, query.value(counter).toLongLong());
    }
    totals.remove(QLatin1String("distance_inches"));
    totals.insert(QLatin1String("distance"),
                  query.value(QStringLiteral("distance_inches")).toDouble() / InchesPerMile);
    return totals;
}

QJsonObject ServiceStore::ranks(qint64 accountId)
{
    QJsonObject ranks;
    for (const QLatin1String counter : ServiceCounterNames) {
        const QString statement =
            QStringLiteral("SELECT CASE own.%1 WHEN 0 THEN 0 ELSE "
                           "1 + (SELECT COUNT(*) FROM accounts WHERE %1 > own.%1) END "
                           "FROM accounts AS own WHERE own.id = ?");
        ranks.insert(accountName(counter),
                     m_database.value(statement.arg(counter), {accountId}).toLongLong());
    }
    return ranks;
}

QJsonObject ServiceStore::accountInfo(const ServiceComputer& computer)
{
    QSqlQuery query = m_database.run(
        QStringLiteral("SELECT username, email FROM accounts WHERE id = ?"), {computer.accountId});
    query.next();
    return {{QStringLiteral("username"), query.value(0).toString()},
            {QStringLiteral("email"), query.value(1).toString()},
            {QStringLiteral("computer"), computer.name},
            {QStringLiteral("token"), computer.zurgeToken},
            {QStringLiteral("lastzurge"), computer.lastZurge},
            {QStringLiteral("totals"), totals(computer.accountId)},
            {QStringLiteral("ranks"), ranks(computer.accountId)}};
}

QJsonObject ServiceStore::computerStats(const ServiceComputer& computer)
{
    if (computer.lastZurge.isEmpty()) {
        return {};
    }
    QSqlQuery query = m_database.run(
        QStringLiteral("SELECT keys, clicks, download, upload, uptime, scrolls, distance_inches "
                       "FROM computers WHERE id = ?"),
        {computer.id});
    query.next();
    QJsonObject stats;
    for (const QLatin1String counter : ServiceCounterNames) {
        stats.insert(counter, query.value(counter).toLongLong());
    }
    return stats;
}

qint64 ServiceStore::addMessage(qint64 accountId, const QJsonObject& message)
{
    const auto text = [&message](QLatin1String name) { return message.value(name).toString(); };
    return m_database
        .run(QStringLiteral("INSERT INTO messages (account_id, created_at, type, text, "
                            "button_text, link) VALUES (?, ?, ?, ?, ?, ?)"),
             {accountId, now(), text(QLatin1String("type")), text(QLatin1String("text")),
              text(QLatin1String("button_text")), text(QLatin1String("link"))})
        .lastInsertId()
        .toLongLong();
}

QJsonArray ServiceStore::messages(qint64 accountId)
{
    QSqlQuery query = m_database.run(
        QStringLiteral("SELECT id, created_at, type, text, button_text, link FROM messages "
                       "WHERE account_id = ? ORDER BY id"),
        {accountId});
    QJsonArray messages;
    while (query.next()) {
        messages.append(QJsonObject{{QStringLiteral("id"), query.value(0).toLongLong()},
                                    {QStringLiteral("created_at"), query.value(1).toString()},
                                    {QStringLiteral("type"), query.value(2).toString()},
                                    {QStringLiteral("text"), query.value(3).toString()},
                                    {QStringLiteral("button_text"), query.value(4).toString()},
                                    {QStringLiteral("link"), query.value(5).toString()}});
    }
    return messages;
}
