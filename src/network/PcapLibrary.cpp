// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/PcapLibrary.h"

#include <array>

// NOLINTBEGIN(readability-identifier-naming)
decltype(&pcap_findalldevs) w_pcap_findalldevs = nullptr;
decltype(&pcap_compile) w_pcap_compile = nullptr;
decltype(&pcap_setfilter) w_pcap_setfilter = nullptr;
decltype(&pcap_freealldevs) w_pcap_freealldevs = nullptr;
decltype(&pcap_geterr) w_pcap_geterr = nullptr;
decltype(&pcap_breakloop) w_pcap_breakloop = nullptr;
decltype(&pcap_close) w_pcap_close = nullptr;
decltype(&pcap_freecode) w_pcap_freecode = nullptr;
decltype(&pcap_dispatch) w_pcap_dispatch = nullptr;
decltype(&pcap_create) w_pcap_create = nullptr;
decltype(&pcap_set_snaplen) w_pcap_set_snaplen = nullptr;
decltype(&pcap_set_promisc) w_pcap_set_promisc = nullptr;
decltype(&pcap_set_timeout) w_pcap_set_timeout = nullptr;
decltype(&pcap_activate) w_pcap_activate = nullptr;

// NOLINTEND(readability-identifier-naming)

PcapLibrary::PcapLibrary(const QString& name)
    : m_isComplete(load(name))
{
    // Resolved in any case: where the library is missing, no pointer of an earlier one stays.
    if (!resolveAll() && m_isComplete) {
        m_isComplete = false;
        m_error = m_library.errorString();
    }
}

/// The name without a version belongs to the development files, which few machines have.
bool PcapLibrary::load(const QString& name)
{
    m_library.setFileName(name);
    if (m_library.load()) {
        return true;
    }
    const QString error = m_library.errorString();
    // The project's own version, and the one that Debian and its children have kept since 0.8.
    for (const QString& version : {QStringLiteral("1"), QStringLiteral("0.8")}) {
        m_library.setFileNameAndVersion(name, version);
        if (m_library.load()) {
            return true;
        }
    }
    m_error = error;
    return false;
}

bool PcapLibrary::resolveAll()
{
    bool complete = true;
    const auto resolve = [this, &complete]<typename Function>(Function& pointer,
                                                              const char* symbol) {
        pointer =
            m_library.isLoaded() ? reinterpret_cast<Function>(m_library.resolve(symbol)) : nullptr;
        complete = complete && pointer;
    };
    resolve(w_pcap_findalldevs, "pcap_findalldevs");
    resolve(w_pcap_compile, "pcap_compile");
    resolve(w_pcap_setfilter, "pcap_setfilter");
    resolve(w_pcap_freealldevs, "pcap_freealldevs");
    resolve(w_pcap_geterr, "pcap_geterr");
    resolve(w_pcap_breakloop, "pcap_breakloop");
    resolve(w_pcap_close, "pcap_close");
    resolve(w_pcap_freecode, "pcap_freecode");
    resolve(w_pcap_dispatch, "pcap_dispatch");
    resolve(w_pcap_create, "pcap_create");
    resolve(w_pcap_set_snaplen, "pcap_set_snaplen");
    resolve(w_pcap_set_promisc, "pcap_set_promisc");
    resolve(w_pcap_set_timeout, "pcap_set_timeout");
    resolve(w_pcap_activate, "pcap_activate");
    return complete;
}
