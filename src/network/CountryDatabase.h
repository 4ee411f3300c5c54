// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/IpAddress.h"

#include <QString>

#include <memory>

/// A MaxMind DB file that tells the country of an address. One thread at a time.
class CountryDatabase final
{
public:
    /// Filed for an address that the database does not know.
    static QString unknownCode();
    /// Filed for the local network and for multicast.
    static QString localCode();

    CountryDatabase();
    CountryDatabase(const CountryDatabase&) = delete;
    CountryDatabase& operator=(const CountryDatabase&) = delete;
    ~CountryDatabase();

    /// Opens the file in place of the one open so far. Returns the reader's message where it cannot
    /// be read, or is no database of countries; nothing is open then.
    QString open(const QString& path);
    bool isOpen() const;

    /// Two upper-case letters of ISO 3166-1, `localCode` or `unknownCode`. Without an open database
    /// every public address is unknown.
    QString countryCode(const IpAddress& address) const;

private:
    class Reader;
    std::unique_ptr<Reader> m_reader;
};
