// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Which way the network is watched. Plain value.
struct CaptureState
{
    enum class BackEnd
    {
        PacketRing, ///< Every packet, of all interfaces.
        Pcap,       ///< Every TCP and UDP packet, interface by interface, through libpcap.
        Counters,   ///< The kernel's totals per interface: no applications, countries or ports.
    };

    BackEnd backEnd = BackEnd::Counters;

    /// Why not a better one, as one English sentence for the log and for the user; empty beside the
    /// packet ring.
    QString reason = {};

    /// Whether libpcap is not installed, or not where it is looked for; without, only the packet
    /// ring captures.
    bool pcapMissing = false;

    /// The command that would let this program capture packets; empty where it may already.
    QString command = {};

    friend bool operator==(const CaptureState&, const CaptureState&) = default;
};
