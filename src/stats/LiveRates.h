// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <array>
#include <chrono>
#include <functional>
#include <optional>

/// What happened in the last five seconds, as rates: for whatever shows live figures. Without news
/// the rates sink to zero; no timer runs, and nothing is allocated. Thread: main.
class LiveRates
{
public:
    /// Time since any fixed point, by a clock that never goes back.
    using Clock = std::function<std::chrono::milliseconds()>;

    static constexpr std::chrono::milliseconds Window{5'000};

    explicit LiveRates(Clock clock = steadyClock);

    void noteKey();
    void noteClick();

    /// Bytes taken from a capture. To be called at each take, also where it found none: this tells
    /// that traffic is watched.
    void noteTraffic(quint64 download, quint64 upload);

    double keysPerSecond() const;
    double clicksPerSecond() const;

    /// Bytes per second; nothing where no traffic was watched within the window.
    std::optional<double> downloadPerSecond() const;
    std::optional<double> uploadPerSecond() const;

private:
    /// What happened within one slice of time. Plain value.
    struct Slice
    {
        qint64 number = -1; ///< Of the slice since the clock's start; none at first.
        quint64 keys = 0;
        quint64 clicks = 0;
        quint64 download = 0;
        quint64 upload = 0;
        bool isTrafficWatched = false;
    };

    static constexpr std::chrono::milliseconds SliceLength{500};
    static constexpr qint64 SliceCount = Window / SliceLength;

    static std::chrono::milliseconds steadyClock();

    Slice& currentSlice();
    bool isWithinWindow(const Slice& slice, qint64 current) const;
    double perSecond(quint64 Slice::*amount) const;
    bool isTrafficWatched() const;
    qint64 sliceNumber() const;

    Clock m_clock;
    std::array<Slice, SliceCount> m_slices; ///< A ring: number modulo its size.
};
