// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/Random.h"

#include <algorithm>
#include <cmath>
#include <numeric>

Random::Random(quint64 seed)
    : m_engine(seed)
{
}

double Random::unit()
{
    constexpr int unusedBits = 11;
    constexpr double step = 0x1p-53;
    return static_cast<double>(m_engine() >> unusedBits) * step;
}

bool Random::chance(double probability)
{
    return unit() < probability;
}

int Random::between(int least, int most)
{
    return least + static_cast<int>(unit() * (most - least + 1));
}

double Random::around(double middle, double spread)
{
    // The mean of three even draws; each end is reached, and rarely.
    const double draws = unit() + unit() + unit();
    return middle + spread * (draws * 2 / 3 - 1);
}

double Random::vary(double value, double share)
{
    return value * (1 + share * (2 * unit() - 1));
}

int Random::whole(double value)
{
    return std::max(0, static_cast<int>(std::floor(value + unit())));
}

size_t Random::pick(std::span<const double> weights)
{
    double left = unit() * std::accumulate(weights.begin(), weights.end(), 0.0);
    for (size_t i = 0; i < weights.size(); ++i) {
        left -= weights[i];
        if (left < 0) {
            return i;
        }
    }
    return weights.size() - 1;
}
