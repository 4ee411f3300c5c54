// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/Traffic.h"

#include <algorithm>

namespace {

struct Country
{
    const char* code;
    double share;
};

constexpr std::array Countries{
    Country{"US", 0.36},  Country{"DE", 0.2},   Country{"NL", 0.12},  Country{"IE", 0.07},
    Country{"FR", 0.05},  Country{"GB", 0.04},  Country{"SE", 0.03},  Country{"FI", 0.02},
    Country{"CA", 0.015}, Country{"CH", 0.015}, Country{"JP", 0.01},  Country{"PL", 0.008},
    Country{"AT", 0.006}, Country{"SG", 0.004}, Country{"BR", 0.003}, Country{"AU", 0.002},
};

struct PortShare
{
    Port port;
    double share;
};

constexpr std::array Ports{
    PortShare{{443, "TCP"}, 0.58},   PortShare{{443, "UDP"}, 0.2},
    PortShare{{80, "TCP"}, 0.05},    PortShare{{53, "UDP"}, 0.002},
    PortShare{{22, "TCP"}, 0.04},    PortShare{{993, "TCP"}, 0.02},
    PortShare{{587, "TCP"}, 0.004},  PortShare{{853, "TCP"}, .001},
    PortShare{{5222, "TCP"}, 0.004}, PortShare{{123, "UDP"}, 0.0001},
    PortShare{{3478, "UDP"}, 0.03},
};

} // namespace

Traffic::Traffic(Random& random, const HourCounts& hour)
{
    // What the system itself fetches and sends, a millisecond.
    constexpr double systemDownload = 0.35;
    constexpr double systemUpload = 0.11;
    const auto msecOn = static_cast<double>(hour.msecOn);
    m_download = static_cast<qint64>(random.vary(msecOn * systemDownload, 0.8));
    m_upload = static_cast<qint64>(random.vary(msecOn * systemUpload, 0.8));
    for (const ApplicationHour& application : hour.inFront) {
        m_download += application.download;
        m_upload += application.upload;
    }
    spreadOverCards(random);
    spreadOverCountries(random);
    spreadOverPorts(random);
}

/// Mostly by cable, sometimes by wifi, and rarely by both within an hour.
void Traffic::spreadOverCards(Random& random)
{
    const double draw = random.unit();
    const double wired = draw < 0.72 ? 1 : draw < 0.94 ? 0 : random.unit();
    const auto wiredDownload = static_cast<qint64>(static_cast<double>(m_download) * wired);
    const auto wiredUpload = static_cast<qint64>(static_cast<double>(m_upload) * wired);
    cards = {{&NetworkCards[0], wiredDownload, wiredUpload},
             {&NetworkCards[1], m_download - wiredDownload, m_upload - wiredUpload}};
    std::erase_if(cards, [](const auto& card) { return card.download + card.upload == 0; });
}

void Traffic::spreadOverCountries(Random& random)
{
    for (const Country& country : Countries) {
        // The rarer ones do not turn up every hour.
        if (random.chance(std::min(1.0, country.share * 25))) {
            const double share = country.share * (0.5 + 0.5 * random.unit());
            countries.push_back({country.code,
                                 static_cast<qint64>(static_cast<double>(m_download) * share),
                                 static_cast<qint64>(static_cast<double>(m_upload) * share)});
        }
    }
}

void Traffic::spreadOverPorts(Random& random)
{
    for (const auto& [port, share] : Ports) {
        if (random.chance(std::min(1.0, 0.35 + share * 10))) {
            const double part = share * (0.6 + 0.4 * random.unit());
            ports.push_back({port, static_cast<qint64>(static_cast<double>(m_download) * part),
                             static_cast<qint64>(static_cast<double>(m_upload) * part)});
        }
    }
}
