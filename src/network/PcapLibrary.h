// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLibrary>
#include <QString>

#include <pcap/pcap.h>

// What is called of libpcap, and only through these: the program is not linked to it. Null until a
// `PcapLibrary` has found them; written by its constructor alone, before any thread captures.
// NOLINTBEGIN(readability-identifier-naming): each is its function's name with a mark before it.
extern decltype(&pcap_findalldevs) w_pcap_findalldevs;
extern decltype(&pcap_compile) w_pcap_compile;
extern decltype(&pcap_setfilter) w_pcap_setfilter;
extern decltype(&pcap_freealldevs) w_pcap_freealldevs;
extern decltype(&pcap_geterr) w_pcap_geterr;
extern decltype(&pcap_breakloop) w_pcap_breakloop;
extern decltype(&pcap_close) w_pcap_close;
extern decltype(&pcap_freecode) w_pcap_freecode;
extern decltype(&pcap_dispatch) w_pcap_dispatch;
extern decltype(&pcap_create) w_pcap_create;
extern decltype(&pcap_set_snaplen) w_pcap_set_snaplen;
extern decltype(&pcap_set_promisc) w_pcap_set_promisc;
extern decltype(&pcap_set_timeout) w_pcap_set_timeout;
extern decltype(&pcap_activate) w_pcap_activate;

// NOLINTEND(readability-identifier-naming)

/// libpcap as it is installed, opened for the life of the process. Thread: main.
class PcapLibrary final
{
public:
    /// `name` is without prefix and version: "pcap" is looked for as libpcap.so, and under the
    /// versions that distributions give it.
    explicit PcapLibrary(const QString& name);

    bool isComplete() const { return m_isComplete; } ///< Every pointer above can be called.

    const QString& error() const { return m_error; } ///< The loader's text; empty where complete.

private:
    bool load(const QString& name);
    bool resolveAll();

    QLibrary m_library;
    QString m_error;
    bool m_isComplete = false;
};
