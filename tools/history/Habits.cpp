// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/Habits.h"

#include <algorithm>

namespace {

constexpr double BytesPerKib = 1024;

constexpr std::array ZealByMonth{1.05, 1.08, 1.04, 0.98, 0.96, 0.92,
                                 0.86, 0.85, 1.0,  1.06, 1.1,  0.97};

bool isInUse(const Application& application, double share)
{
    return application.from <= share && (share < application.to || application.to >= 1);
}

} // namespace

Habits::Habits(Random& random)
    : m_random(random)
    , m_mixes{KeyMix(Typing::Prose),   KeyMix(Typing::Code), KeyMix(Typing::Commands),
              KeyMix(Typing::Numbers), KeyMix(Typing::Game), KeyMix(Typing::Browsing)}
{
}

void Habits::startDay(QDate date, double share)
{
    Choice candidates;
    for (const Application& application : applicationCatalog()) {
        if (isInUse(application, share)) {
            candidates.push_back(&application);
        }
    }
    for (const Activity activity : Activities) {
        const auto count = static_cast<size_t>(m_random.between(4, 7));
        m_ofToday.at(static_cast<size_t>(activity)) = choose(candidates, activity, count);
    }
    const double growth = 0.55 + 0.35 * share;
    m_zeal = m_random.vary(growth * ZealByMonth.at(static_cast<size_t>(date.month()) - 1), 0.25);
}

/// Draws without putting back, by liking.
Habits::Choice Habits::choose(Choice candidates, Activity activity, size_t count)
{
    std::erase_if(candidates, [activity](const Application* application) {
        return application->liking.at(static_cast<size_t>(activity)) <= 0;
    });
    Choice chosen;
    while (!candidates.empty() && chosen.size() < count) {
        std::vector<double> weights;
        for (const Application* application : candidates) {
            weights.push_back(application->liking.at(static_cast<size_t>(activity)));
        }
        const auto drawn = candidates.begin() + static_cast<qptrdiff>(m_random.pick(weights));
        chosen.push_back(*drawn);
        candidates.erase(drawn);
    }
    return chosen;
}

void Habits::spend(Activity activity, int minutes, HourCounts& hour)
{
    Choice candidates = m_ofToday.at(static_cast<size_t>(activity));
    for (const Application* application : candidates) {
        if (std::ranges::find(hour.running, application) == hour.running.end()) {
            hour.running.push_back(application);
        }
    }
    std::erase_if(candidates, [&hour](const Application* application) {
        return std::ranges::find(hour.inFront, application, &ApplicationHour::application) !=
               hour.inFront.end();
    });
    const Choice chosen =
        choose(std::move(candidates), activity, static_cast<size_t>(m_random.between(2, 5)));
    std::vector<double> shares;
    double sum = 0;
    for (size_t i = 0; i < chosen.size(); ++i) {
        shares.push_back(0.1 + m_random.unit());
        sum += shares.back();
    }
    for (size_t i = 0; i < chosen.size(); ++i) {
        hour.inFront.push_back(use(*chosen[i], minutes * shares[i] / sum));
    }
}

ApplicationHour Habits::use(const Application& application, double minutes)
{
    constexpr std::array buttonShares{0.86, 0.09, 0.04, 0.01};
    constexpr std::array directionShares{0.29, 0.69, 0.01, 0.01};
    constexpr double unknownShare = 0.0006;
    const Pace& pace = *application.pace;
    const auto amount = [this, minutes](double perMinute) {
        return m_random.vary(perMinute * minutes * m_zeal, 0.4);
    };
    ApplicationHour hour;
    hour.application = &application;
    hour.secondsInFront = static_cast<int>(minutes * 60 * (0.86 + 0.13 * m_random.unit()));
    const double keystrokes = amount(pace.keys);
    const KeyMix& mix = m_mixes.at(static_cast<size_t>(pace.typing));
    hour.keys = mix.keys(m_random, keystrokes);
    hour.combos = mix.combos(m_random, keystrokes);
    hour.unknownKeys = m_random.whole(keystrokes * unknownShare);
    const double clicks = amount(pace.clicks);
    std::ranges::transform(buttonShares, hour.clicks.begin(),
                           [&](double share) { return m_random.whole(clicks * share); });
    const double scrolls = amount(pace.scrolls);
    std::ranges::transform(directionShares, hour.scrolls.begin(),
                           [&](double share) { return m_random.whole(scrolls * share); });
    hour.inches = m_random.whole(amount(pace.inches));
    hour.download = static_cast<qint64>(amount(pace.download) * BytesPerKib);
    hour.upload = static_cast<qint64>(amount(pace.upload) * BytesPerKib);
    return hour;
}
