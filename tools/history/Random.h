// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <array>
#include <cstddef>
#include <random>
#include <span>

/// Numbers that look random and are the same for the same seed on every machine: the engine is
/// fixed by the language, and the distributions are made here, since those of the standard library
/// differ from one library to the next.
class Random
{
public:
    explicit Random(quint64 seed);

    /// From 0 up to, and without, 1.
    double unit();

    bool chance(double probability);

    /// A whole number from `least` to `most`, both included.
    int between(int least, int most);

    /// Bell-shaped around `middle`, never further away than `spread`.
    double around(double middle, double spread);

    /// `value` times something between 1 - `share` and 1 + `share`.
    double vary(double value, double share);

    /// A whole number beside `value`, drawn so that `value` is its mean. Not negative.
    int whole(double value);

    /// An index, drawn by weight. The weights must not all be zero.
    size_t pick(std::span<const double> weights);

private:
    std::mt19937_64 m_engine;
};
