// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "history/HourCounts.h"

/// Bytes both ways between this computer and one end. Plain value.
template <typename End>
struct TrafficWith
{
    End end{};
    qint64 download = 0;
    qint64 upload = 0;
};

struct NetworkCard
{
    const char* macAddress = nullptr;
    const char* description = nullptr;
    bool wifi = false;
    const char* addresses = nullptr;
};

struct Port
{
    int number = 0;
    const char* protocol = nullptr;
};

inline constexpr std::array NetworkCards{
    NetworkCard{"02:4F:1C:A0:5E:11", "enp3s0", false, "192.168.1.23"},
    NetworkCard{"02:4F:1C:A0:5E:12", "wlp2s0", true, "192.168.1.24"},
};

/// How an hour's traffic spreads over the network cards, the countries and the ports. What goes to
/// the local network belongs to no country, and some ports are unknown: their sums stay below the
/// cards'.
class Traffic
{
public:
    Traffic(Random& random, const HourCounts& hour);

    std::vector<TrafficWith<const NetworkCard*>> cards;
    std::vector<TrafficWith<const char*>> countries; ///< By ISO code.
    std::vector<TrafficWith<Port>> ports;

private:
    void spreadOverCards(Random& random);
    void spreadOverCountries(Random& random);
    void spreadOverPorts(Random& random);

    qint64 m_download = 0;
    qint64 m_upload = 0;
};
