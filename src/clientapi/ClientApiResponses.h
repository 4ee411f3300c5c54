// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>

class LiveRates;
class LocalStats;
class ProfileManager;

/// Builds the objects that the client API answers with, over HTTP and WebSocket alike, from what is
/// known at the moment of asking. Nothing is read from the database but the list of profiles.
/// Thread: main.
class ClientApiResponses
{
public:
    /// All three outlive this object.
    ClientApiResponses(const LocalStats& localStats, const LiveRates& rates,
                       const ProfileManager& profiles);

    /// What the account holds, as the service told last; zeros without an account. Bytes are bytes.
    static QJsonObject formatAccountTotalStats();

    /// The rates of the last seconds, as texts. Traffic that nobody watches is "0,00B/s".
    QJsonObject formatRealtimeStats() const;

    /// The counts that were not sent yet.
    QJsonObject formatUnzurgedStats() const;

    /// Profile 0 first, then the others by name. Profile 0 has no times of its own: they are empty.
    QJsonObject formatProfiles() const;

    /// The first three in one object: "account-totals", "realtime", "unzurged".
    QJsonObject formatAllStats() const;

private:
    const LocalStats& m_localStats;
    const LiveRates& m_rates;
    const ProfileManager& m_profiles;
};
