// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/Statement.h"
#include "history/Traffic.h"

#include <QDateTime>

/// What crossed the network cards in a period, in bytes. Plain value.
struct NetworkTotals
{
    qint64 download = 0;
    qint64 upload = 0;
};

/// Writes the tables of the network traffic.
class NetworkRows
{
public:
    NetworkRows(const Connection& connection, Random& random);

    /// Returns the bytes that crossed the network cards.
    NetworkTotals write(const HourCounts& hour);

    /// Stores the network cards, seen last at that time.
    void finish(const QDateTime& end);

private:
    Random& m_random;
    Statement m_card;
    Statement m_application;
    Statement m_country;
    Statement m_port;
    Statement m_interface;
};
