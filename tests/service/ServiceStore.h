// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "service/ServiceDatabase.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QLatin1String>
#include <QString>

#include <array>
#include <optional>

/// The names of the counters, in the order of `ServiceCounts`.
inline constexpr std::array<QLatin1String, 7> ServiceCounterNames{
    QLatin1String("keys"),           QLatin1String("clicks"), QLatin1String("download"),
    QLatin1String("upload"),         QLatin1String("uptime"), QLatin1String("scrolls"),
    QLatin1String("distance_inches")};

/// In the units of docs/account-protocol.md, all whole.
using ServiceCounts = std::array<qint64, ServiceCounterNames.size()>;

/// One computer of an account. Plain value.
struct ServiceComputer
{
    qint64 id = 0;
    qint64 accountId = 0;
    QString name;
    QString passwordHash;
    QString zurgeToken;
    QString lastZurge; ///< UTC; empty: never.
    bool archived = false;
    bool activated = true; ///< The account is.
};

/// A zurge as it came. Plain value.
struct ServiceZurge
{
    QString token;
    QString mechanism = {};
    ServiceCounts counts{};
    QJsonArray applications = {};
    QJsonObject timeSeries = {};
};

/// Accounts, their computers, who is signed in, and what was zurged.
class ServiceStore
{
public:
    enum class Activation
    {
        Done,
        Pending,
    };

    static constexpr qint64 ClientTokenSeconds = 600;
    static constexpr qint64 AuthorizationSeconds = 3600;

    explicit ServiceStore(ServiceDatabase& database);

    QString now() const; ///< UTC, as the protocol tells times.
    qint64 nowSeconds() const;

    /// The account of this name, made where there is none.
    qint64 account(const QString& userName, Activation activation = Activation::Done);
    QStringList userNames();

    /// The account's computer of this name, made where there is none.
    ServiceComputer computerNamed(qint64 accountId, const QString& name);
    std::optional<ServiceComputer> computer(qint64 accountId, qint64 computerId);
    void setArchived(qint64 computerId, bool archived);

    QString newClientToken(const ServiceComputer& computer); ///< The earlier one is over.
    std::optional<ServiceComputer> clientTokenOwner(const QString& token);
    void forgetClientToken(const QString& token);
    void forgetClientTokens();

    void expectClient(const QString& clientUid);
    bool isExpected(const QString& clientUid);
    void agree(const QString& clientUid, const ServiceComputer& computer);
    std::optional<ServiceComputer> authorizedComputer(const QString& clientUid);

    /// Adds the counts and changes the token in one transaction. The next token, or nothing, and
    /// nothing done, where the zurge's token is not the computer's.
    std::optional<QString> takeZurge(qint64 computerId, const ServiceZurge& zurge);

    QJsonObject totals(qint64 accountId); ///< The distance in miles.
    QJsonObject ranks(qint64 accountId);

    /// Token, last zurge, names, totals and ranks.
    QJsonObject accountInfo(const ServiceComputer& computer);
    QJsonObject computerStats(const ServiceComputer& computer); ///< Empty: a new computer.

    qint64 addMessage(qint64 accountId, const QJsonObject& message);
    QJsonArray messages(qint64 accountId);

private:
    std::optional<ServiceComputer> computerWhere(const QString& condition,
                                                 const QVariantList& values);
    void addCounts(qint64 computerId, const ServiceCounts& counts);
    void keepZurge(qint64 computerId, const ServiceZurge& zurge);
    void keepHour(qint64 computerId, const QString& hour, const QJsonObject& counts);

    ServiceDatabase& m_database;
};
