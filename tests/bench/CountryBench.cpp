// SPDX-License-Identifier: GPL-3.0-or-later
// What the country of an address costs, over 10,000 public addresses, in the database that the
// program ships; beside one look-up in a hash of them, which is what remembering would cost.
#include "base/InstalledFiles.h"
#include "network/CountryDatabase.h"

#include <QCoreApplication>
#include <QHash>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>
#include <vector>

namespace {

QString databasePath()
{
    return installedFile(QStringLiteral("country.mmdb"));
}

std::vector<IpAddress> addresses(std::uint8_t family)
{
    constexpr int count = 10'000;
    std::mt19937 random(1);
    std::vector<IpAddress> result;
    while (result.size() < count) {
        IpAddress address = IpAddress::fromIpv4(static_cast<std::uint32_t>(random()));
        if (family == IpAddress::Ipv6) {
            // 2000::/12 to 2a0f::/16, where the registries' allocations lie.
            address.family = family;
            address.bytes = {static_cast<std::uint8_t>(random() % 2 == 0 ? 0x20 : 0x2a),
                             static_cast<std::uint8_t>(random() % 16),
                             static_cast<std::uint8_t>(random()),
                             static_cast<std::uint8_t>(random())};
        }
        result.push_back(address);
    }
    return result;
}

void lookUp(benchmark::State& state, std::uint8_t family)
{
    CountryDatabase countries;
    countries.open(databasePath());
    const std::vector<IpAddress> all = addresses(family);
    std::size_t at = 0;
    std::size_t known = 0;
    for ([[maybe_unused]] const auto& run : state) {
        known += countries.countryCode(all[at]) != CountryDatabase::unknownCode() ? 1U : 0U;
        at = (at + 1) % all.size();
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["known"] = static_cast<double>(known) / static_cast<double>(state.iterations());
}

void referenceHash(benchmark::State& state, std::uint8_t family)
{
    QHash<IpAddress, QString> codes;
    const std::vector<IpAddress> all = addresses(family);
    for (const IpAddress& address : all) {
        codes.insert(address, CountryDatabase::unknownCode());
    }
    std::size_t at = 0;
    for ([[maybe_unused]] const auto& run : state) {
        benchmark::DoNotOptimize(codes.value(all[at]));
        at = (at + 1) % all.size();
    }
    state.SetItemsProcessed(state.iterations());
}

void open(benchmark::State& state)
{
    for ([[maybe_unused]] const auto& run : state) {
        CountryDatabase countries;
        benchmark::DoNotOptimize(countries.open(databasePath()));
    }
}

} // namespace

BENCHMARK_CAPTURE(lookUp, ipv4, IpAddress::Ipv4);
BENCHMARK_CAPTURE(lookUp, ipv6, IpAddress::Ipv6);
BENCHMARK_CAPTURE(referenceHash, ipv4, IpAddress::Ipv4);
BENCHMARK_CAPTURE(referenceHash, ipv6, IpAddress::Ipv6);
BENCHMARK(open)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (databasePath().isEmpty()) {
        std::fputs("skipped: there is no country.mmdb\n", stderr);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
