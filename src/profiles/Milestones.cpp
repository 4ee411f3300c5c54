// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/Milestones.h"

#include "base/Log.h"
#include "profiles/MilestoneTotals.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/SettingKey.h"

#include <algorithm>

namespace {

constexpr int CheckMs = 60'000;

QDateTime toTime(const QVariant& stored)
{
    return SettingValue::toDateTime(stored).value_or(QDateTime());
}

/// An empty text of Qt's may be null, which the columns refuse.
QString storable(const QString& text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

/// An amount below 1 would fire at every check.
bool canBeChecked(const QString& type, qint64 amount)
{
    return MilestoneTotals::isKnown(type) && amount > 0;
}

} // namespace

Milestones::Milestones(QObject* parent)
    : QObject(parent)
{
    connect(&m_timer, &QTimer::timeout, this, &Milestones::checkForMilestone);
    m_timer.start(CheckMs);
}

Milestones::~Milestones() = default;

void Milestones::stop()
{
    m_timer.stop();
}

void Milestones::refreshSettings(int id)
{
    const QString columns = QStringLiteral(
        "SELECT id, name, time_created, time_updated, time_last_triggered, stats_type, "
        "stats_amount, milestone_active, last_stats_when_triggered, custom_message FROM "
        "milestones");
    DSqlQuery query(Database::instance());
    if (id == All) {
        m_milestones.clear();
        query.prepare(columns + QStringLiteral(" ORDER BY id"));
    } else {
        m_milestones.remove(id);
        query.prepare(columns + QStringLiteral(" WHERE id = ?"));
        query.bindValue(0, id);
    }
    query.exec();
    while (query.next()) {
        const Milestone milestone = read(query);
        if (!canBeChecked(milestone.statsType, milestone.statsAmount)) {
            Log::warn("Ignoring milestone {} of unknown type or amount: {} {}", milestone.name,
                      milestone.statsAmount, milestone.statsType);
        }
        m_milestones.insert(milestone.id, milestone);
    }
    Q_EMIT signalMilestonesChanged();
}

Milestones::Milestone Milestones::read(const DSqlQuery& query)
{
    Milestone milestone;
    int column = 0;
    milestone.id = query.value(column++).toLongLong();
    milestone.name = query.value(column++).toString();
    milestone.timeCreated = toTime(query.value(column++));
    milestone.timeUpdated = toTime(query.value(column++));
    milestone.timeLastTriggered = toTime(query.value(column++));
    milestone.statsType = query.value(column++).toString();
    milestone.statsAmount = query.value(column++).toLongLong();
    milestone.milestoneActive = convertSetting(query.value(column++), false);
    milestone.lastStatsWhenTriggered = query.value(column++).toLongLong();
    milestone.customMessage = query.value(column).toString();
    return milestone;
}

void Milestones::checkForMilestone()
{
    const Database* database = Database::instance();
    if (database == nullptr || database->state() != Database::State::Open || database->isLent()) {
        return;
    }
    MilestoneTotals totals(Database::instance());
    for (const Milestone& milestone : list()) {
        if (!milestone.milestoneActive ||
            !canBeChecked(milestone.statsType, milestone.statsAmount)) {
            continue;
        }
        lowerBase(m_milestones[milestone.id], totals);
        const std::optional<qint64> grown = progress(milestone, totals);
        if (grown && *grown >= milestone.statsAmount) {
            fire(m_milestones[milestone.id], totals.current(milestone.statsType).value_or(0));
        }
    }
}

void Milestones::lowerBase(Milestone& milestone, MilestoneTotals& totals)
{
    const std::optional<qint64> total = totals.current(milestone.statsType);
    if (total && *total < milestone.lastStatsWhenTriggered) {
        setBase(milestone, *total);
    }
}

void Milestones::setBase(Milestone& milestone, qint64 total)
{
    DSqlQuery query(Database::instance(),
                    QStringLiteral("UPDATE milestones SET last_stats_when_triggered = ? WHERE id = "
                                   "?"),
                    false);
    query.bindValue(0, total);
    query.bindValue(1, milestone.id);
    query.exec();
    milestone.lastStatsWhenTriggered = total;
}

void Milestones::whileChangingTotals(const std::function<void()>& change)
{
    MilestoneTotals before(Database::instance());
    const QList<Milestone> milestones = list();
    for (const Milestone& milestone : milestones) {
        progress(milestone, before); // Which asks for the total.
    }
    change();
    MilestoneTotals after(Database::instance());
    for (const Milestone& milestone : milestones) {
        if (!MilestoneTotals::isKnown(milestone.statsType)) {
            continue;
        }
        const std::optional<qint64> then = before.current(milestone.statsType);
        const std::optional<qint64> now = after.current(milestone.statsType);
        qint64 base = 0;
        if (then && now && *then != *now &&
            !qAddOverflow(milestone.lastStatsWhenTriggered, *now - *then, &base)) {
            setBase(m_milestones[milestone.id], base);
        }
    }
    Q_EMIT signalMilestonesChanged();
}

std::optional<qint64> Milestones::progress(const Milestone& milestone, MilestoneTotals& totals)
{
    if (!MilestoneTotals::isKnown(milestone.statsType)) {
        return std::nullopt;
    }
    const std::optional<qint64> total = totals.current(milestone.statsType);
    qint64 grown = 0;
    if (!total || qSubOverflow(*total, milestone.lastStatsWhenTriggered, &grown)) {
        return std::nullopt;
    }
    return std::max<qint64>(grown, 0);
}

void Milestones::fire(Milestone& milestone, qint64 total)
{
    Log::info("Milestone triggered!");
    DSqlQuery query(Database::instance(),
                    QStringLiteral("UPDATE milestones SET time_last_triggered = datetime('now', "
                                   "'localtime'), last_stats_when_triggered = ? WHERE id = ?"),
                    false);
    query.bindValue(0, total);
    query.bindValue(1, milestone.id);
    query.exec();
    milestone.timeLastTriggered = QDateTime::currentDateTime();
    milestone.lastStatsWhenTriggered = total;
    // Copied, since whoever is told may load the milestones anew.
    const Milestone fired = milestone;
    const QString text =
        fired.customMessage.isEmpty()
            ? tr("Hit Milestone '%1' with %2 %3")
                  .arg(fired.name, QString::number(fired.statsAmount), fired.statsType)
            : fired.customMessage;
    Q_EMIT signalNeedTrayIconMessage(tr("Milestone Hit!"), text);
    logHit(fired, total);
    Q_EMIT signalMilestonesChanged();
}

void Milestones::logHit(const Milestone& milestone, qint64 total)
{
    DSqlQuery query(Database::instance(),
                    QStringLiteral("INSERT INTO milestones_log (name, time_triggered, stats_type, "
                                   "stats_amount, stats_when_triggered) VALUES (?, datetime('now', "
                                   "'localtime'), ?, ?, ?)"),
                    false);
    query.bindValue(0, storable(milestone.name));
    query.bindValue(1, milestone.statsType);
    query.bindValue(2, milestone.statsAmount);
    query.bindValue(3, total);
    query.exec();
}

QList<Milestones::Milestone> Milestones::list() const
{
    QList<Milestone> milestones = m_milestones.values();
    std::sort(milestones.begin(), milestones.end(),
              [](const Milestone& one, const Milestone& other) { return one.id < other.id; });
    return milestones;
}

QList<Milestones::Hit> Milestones::log() const
{
    DSqlQuery query(Database::instance(),
                    QStringLiteral("SELECT name, time_triggered, stats_type, stats_amount, "
                                   "stats_when_triggered FROM milestones_log ORDER BY "
                                   "time_triggered DESC, rowid DESC"),
                    true);
    QList<Hit> hits;
    while (query.next()) {
        Hit hit;
        hit.name = query.value(0).toString();
        hit.timeTriggered = toTime(query.value(1));
        hit.statsType = query.value(2).toString();
        hit.statsAmount = query.value(3).toLongLong();
        hit.statsWhenTriggered = query.value(4).toLongLong();
        hits.append(hit);
    }
    return hits;
}

bool Milestones::isChoice(const Choice& choice)
{
    return !choice.name.trimmed().isEmpty() && canBeChecked(choice.statsType, choice.statsAmount);
}

bool Milestones::add(const Choice& choice)
{
    const std::optional<qint64> total =
        isChoice(choice) ? MilestoneTotals(Database::instance()).current(choice.statsType)
                         : std::nullopt;
    if (!total) {
        return false;
    }
    DSqlQuery query(
        Database::instance(),
        QStringLiteral("INSERT INTO milestones (name, time_created, time_updated, "
                       "time_last_triggered, stats_type, stats_amount, last_stats_when_triggered, "
                       "custom_message) VALUES (?, datetime('now', 'localtime'), datetime('now', "
                       "'localtime'), '', ?, ?, ?, ?)"),
        false);
    query.bindValue(0, choice.name.trimmed());
    query.bindValue(1, choice.statsType);
    query.bindValue(2, choice.statsAmount);
    query.bindValue(3, *total);
    query.bindValue(4, storable(choice.customMessage));
    return query.exec() && changed(query, query.lastInsertId().toLongLong());
}

bool Milestones::update(qint64 id, const Choice& choice)
{
    const auto milestone = m_milestones.constFind(id);
    if (milestone == m_milestones.constEnd() || !isChoice(choice)) {
        return false;
    }
    const std::optional<qint64> start =
        choice.statsType == milestone->statsType
            ? milestone->lastStatsWhenTriggered
            : MilestoneTotals(Database::instance()).current(choice.statsType);
    if (!start) {
        return false;
    }
    DSqlQuery query(
        Database::instance(),
        QStringLiteral("UPDATE milestones SET name = ?, stats_type = ?, stats_amount = ?, "
                       "last_stats_when_triggered = ?, custom_message = ?, time_updated = "
                       "datetime('now', 'localtime') WHERE id = ?"),
        false);
    query.bindValue(0, choice.name.trimmed());
    query.bindValue(1, choice.statsType);
    query.bindValue(2, choice.statsAmount);
    query.bindValue(3, *start);
    query.bindValue(4, storable(choice.customMessage));
    query.bindValue(5, id);
    return query.exec() && changed(query, id);
}

bool Milestones::remove(qint64 id)
{
    DSqlQuery query(Database::instance(), QStringLiteral("DELETE FROM milestones WHERE id = ?"),
                    false);
    query.bindValue(0, id);
    return query.exec() && changed(query, id);
}

bool Milestones::setActive(qint64 id, bool active)
{
    DSqlQuery query(Database::instance(),
                    QStringLiteral("UPDATE milestones SET milestone_active = ?, time_updated = "
                                   "datetime('now', 'localtime') WHERE id = ?"),
                    false);
    query.bindValue(0, active);
    query.bindValue(1, id);
    return query.exec() && changed(query, id);
}

/// Loads the changed milestone; false where the statement found none.
bool Milestones::changed(DSqlQuery& query, qint64 id)
{
    const bool found = query.numRowsAffected() > 0;
    query.finish();
    refreshSettings(static_cast<int>(id));
    return found;
}
