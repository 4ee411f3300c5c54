// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/SyntheticHistory.h"

#include "storage/Database.h"
#include "storage/DatabaseFiles.h"

#include <QFile>

#include <algorithm>

namespace {

constexpr int MinutesPerHour = 60;
constexpr int HoursPerDay = 24;
constexpr int SecondsPerMinute = 60;
constexpr int MonthsOfPoints = 3;

/// When the person made each profile: shares of the whole history.
constexpr std::array ProfileMadeAt{0.0, 0.08, 0.22, 0.36};

/// Makes a database that cannot be made tell why, and asks nothing.
class Prompts : public DatabasePrompts
{
public:
    void showFailure(const QString& /*title*/, const QString& text) override { failure = text; }

    bool confirmFreshDatabase(const QString& /*text*/) override { return false; }

    QString failure;
};

/// Minutes that two stretches of time have in common.
int overlap(int from, int to, int otherFrom, int otherTo)
{
    return std::max(0, std::min(to, otherTo) - std::max(from, otherFrom));
}

/// The point in time that many minutes after the beginning of a day, by the clock on the wall.
QDateTime at(QDate day, int minutes)
{
    const int days = minutes / (HoursPerDay * MinutesPerHour);
    const int rest = minutes % (HoursPerDay * MinutesPerHour);
    return QDateTime(day.addDays(days), QTime(rest / MinutesPerHour, rest % MinutesPerHour));
}

/// Lets the client make its own schema.
void createDatabase(const QString& directory)
{
    Prompts prompts;
    const Database database(directory, prompts);
    if (database.state() != Database::State::Open) {
        throw HistoryError(prompts.failure.toStdString());
    }
}

} // namespace

void SyntheticHistory::write(const QString& directory, const Plan& plan, const Progress& progress)
{
    const QString target = directory + QLatin1Char('/') + DatabaseFiles::Name;
    // Made under another name: what bears the database's own is complete.
    const QString part = directory + QStringLiteral("/history.part");
    if (QFile::exists(target)) {
        throw HistoryError(qPrintable(target + QStringLiteral(" exists already")));
    }
    QFile::remove(part);
    createDatabase(directory);
    if (!QFile::rename(target, part)) {
        throw HistoryError(qPrintable(QStringLiteral("cannot write to ") + directory));
    }
    {
        SyntheticHistory history(part, plan);
        for (QDate date = plan.first; date <= plan.end.date(); date = date.addDays(1)) {
            progress(history.m_share);
            history.liveThrough(date);
        }
        history.writeProfiles();
        history.m_writer.finish();
    }
    if (!DatabaseFiles::replace(part, target)) {
        throw HistoryError(qPrintable(QStringLiteral("cannot write ") + target));
    }
    progress(1);
}

SyntheticHistory::SyntheticHistory(const QString& database, const Plan& plan)
    : m_plan(plan)
    , m_random(plan.seed)
    , m_life(m_random)
    , m_habits(m_random)
    , m_clickPoints(m_random)
    , m_writer(database, m_random, plan.first.startOfDay(), plan.end)
{
}

void SyntheticHistory::liveThrough(QDate date)
{
    const auto days = static_cast<double>(m_plan.first.daysTo(m_plan.end.date()) + 1);
    m_share = static_cast<double>(m_plan.first.daysTo(date)) / days;
    m_habits.startDay(date, m_share);
    std::vector<PowerPeriod> periods = m_life.day(date);
    if (date == m_plan.end.date()) {
        cutAtTheEnd(periods);
    }
    for (const PowerPeriod& period : periods) {
        live(date, period);
    }
}

/// Leaves out what is yet to come, and lets the last hour see some use.
void SyntheticHistory::cutAtTheEnd(std::vector<PowerPeriod>& periods) const
{
    const int hour = m_plan.end.time().hour() * MinutesPerHour;
    const int end = hour + std::max(m_plan.end.time().minute(), 1);
    for (PowerPeriod& period : periods) {
        period.to = std::min(period.to, end);
        for (Sitting& sitting : period.sittings) {
            sitting.to = std::min(sitting.to, end);
        }
        std::erase_if(period.sittings,
                      [](const Sitting& sitting) { return sitting.from >= sitting.to; });
    }
    std::erase_if(periods, [](const PowerPeriod& period) { return period.sittings.empty(); });
    ensureLastHour(periods, end);
}

void SyntheticHistory::ensureLastHour(std::vector<PowerPeriod>& periods, int end)
{
    const int hour = (end - 1) / MinutesPerHour * MinutesPerHour;
    const bool isRunning = !periods.empty() && periods.back().to > hour;
    if (!isRunning) {
        periods.push_back({hour, end, {{hour, end, Activity::General}}});
        return;
    }
    PowerPeriod& period = periods.back();
    const Sitting& last = period.sittings.back();
    if (last.to <= hour) {
        period.sittings.push_back({hour, end, last.activity});
    }
    period.to = end;
}

void SyntheticHistory::live(QDate date, const PowerPeriod& period)
{
    for (int hour = period.from / MinutesPerHour; hour * MinutesPerHour < period.to; ++hour) {
        for (const auto& [profile, spent] : spentIn(period, hour)) {
            count(date.addDays(hour / HoursPerDay), hour % HoursPerDay, profile, spent);
        }
    }
    const int seconds = m_random.between(0, SecondsPerMinute - 1);
    m_writer.writeBoot(at(date, period.from).addSecs(-seconds),
                       std::min(at(date, period.to), m_plan.end));
}

/// A profile stays active until the next sitting.
std::map<int, SyntheticHistory::Spent> SyntheticHistory::spentIn(const PowerPeriod& period,
                                                                 int hour) const
{
    const int from = hour * MinutesPerHour;
    const int to = from + MinutesPerHour;
    std::map<int, Spent> spentByProfile;
    for (size_t i = 0; i < period.sittings.size(); ++i) {
        const Sitting& sitting = period.sittings[i];
        const bool isLast = i + 1 == period.sittings.size();
        const int begin = i == 0 ? period.from : sitting.from;
        const int end = isLast ? period.to : period.sittings[i + 1].from;
        const int on = overlap(from, to, begin, end);
        if (on == 0) {
            continue;
        }
        Spent& spent = spentByProfile[profileFor(sitting.activity)];
        spent.on += on;
        if (const int active = overlap(from, to, sitting.from, sitting.to); active > 0) {
            spent.active.emplace_back(sitting.activity, active);
        }
    }
    return spentByProfile;
}

void SyntheticHistory::count(QDate day, int hour, int profile, const Spent& spent)
{
    constexpr int msecPerMinute = 60'000;
    HourCounts counts;
    counts.day = day;
    counts.hour = hour;
    counts.profile = profile;
    counts.msecOn = spent.on * msecPerMinute - m_random.between(0, 900);
    for (const auto& [activity, minutes] : spent.active) {
        m_habits.spend(activity, minutes, counts);
    }
    addPoints(counts);
    m_writer.writeHour(counts);
}

void SyntheticHistory::addPoints(HourCounts& hour)
{
    const QDate end = m_plan.end.date();
    if (hour.day < end.addMonths(-MonthsOfPoints)) {
        return;
    }
    for (const ApplicationHour& application : hour.inFront) {
        for (int i = 0; i < application.allClicks(); ++i) {
            hour.points.push_back(m_clickPoints.click());
        }
    }
}

/// What is done before its profile was made is counted under none.
int SyntheticHistory::profileFor(Activity activity) const
{
    const int profile = static_cast<int>(activity);
    return m_share < ProfileMadeAt.at(static_cast<size_t>(profile)) ? 0 : profile;
}

void SyntheticHistory::writeProfiles()
{
    const auto days = static_cast<double>(m_plan.first.daysTo(m_plan.end.date()));
    for (const Activity activity : Activities) {
        if (activity != Activity::General) {
            const double share = ProfileMadeAt.at(static_cast<size_t>(activity));
            const QDate made = m_plan.first.addDays(static_cast<qint64>(days * share));
            m_writer.writeProfile(activity, QDateTime(made, QTime(9, 0)),
                                  activity == Activity::Work);
        }
    }
}
