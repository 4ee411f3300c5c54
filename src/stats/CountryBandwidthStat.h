// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/CountryDatabase.h"
#include "stats/CountedRow.h"
#include "stats/NetworkStat.h"

#include <QString>

/// Files the bytes exchanged with each country, by hour and profile: under its code of two letters,
/// under `CountryDatabase::localCode` for the local network and under
/// `CountryDatabase::unknownCode` for the rest. Thread: main.
class CountryBandwidthStat : public NetworkStat
{
    Q_OBJECT

public:
    /// Prepares its statements; `Database` must exist.
    CountryBandwidthStat(AbstractSystem* system, QObject* parent);

    void onEnabled() override;
    void doUpdate(QDateTime now, bool ui) override;

    /// Opens the country database: "GeoIP.dat" beside the database of this client, or else the
    /// installed one. While none is open, nothing is filed.
    void reloadGeoDB();

    bool hasDatabase() const { return m_countries.isOpen(); }

private:
    void discardGathered() override;
    bool openGeoDB(const QString& path);

    CountryDatabase m_countries;
    CountedRow m_hour;
};
