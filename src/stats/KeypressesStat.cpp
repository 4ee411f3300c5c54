// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/KeypressesStat.h"

#include "account/LocalStats.h"
#include "system/AbstractSystem.h"

#include <QHash>
#include <QRandomGenerator>

#include <algorithm>
#include <exception>
#include <random>
#include <utility>

namespace {

std::uint32_t randomSeed()
{
    try {
        return std::random_device("default")();
    } catch (const std::exception&) {
        // A standard library may not know the token, or find no device behind it.
        return QRandomGenerator::system()->generate();
    }
}

} // namespace

KeypressesStat::KeypressesStat(AbstractSystem* system, QObject* parent)
    : InputStat(system, parent)
    , m_total(QStringLiteral(R"(UPDATE OR IGNORE keypresses SET "count"="count"+? )"
                             R"(WHERE "day"=date('now', 'localtime') AND "hour"=? )"
                             R"(AND "profile_id"=?)"),
              QStringLiteral(R"(INSERT OR IGNORE INTO keypresses ("day", "hour", "count", )"
                             R"("profile_id") VALUES(date('now', 'localtime'), ?, 0, ?);)"))
    , m_perKey(QStringLiteral(R"(UPDATE OR IGNORE keypress_frequency SET "count"="count"+? )"
                              R"(WHERE "day"=date('now', 'localtime') AND "hour"=? AND "key"=? )"
                              R"(AND "profile_id"=?)"),
               QStringLiteral(R"(INSERT OR IGNORE INTO keypress_frequency ("day", "hour", "key", )"
                              R"("count","profile_id") )"
                              R"(VALUES(date('now', 'localtime'), ?, ?, ?, ?);)"))
    , m_perApplication(
          QStringLiteral(R"(UPDATE OR IGNORE input_per_application SET "keys"="keys"+? )"
                         R"(WHERE "day"=date('now', 'localtime') AND "hour"=? AND "path"=? )"
                         R"(AND "profile_id"=?)"),
          QStringLiteral(R"(INSERT OR IGNORE INTO input_per_application ("day", "hour", "path", )"
                         R"("keys", "clicks","profile_id") )"
                         R"(VALUES(date('now', 'localtime'), ?, ?, ?, 0, ?);)"))
    , m_perKeyAndApplication(
          QStringLiteral(R"(UPDATE OR IGNORE keypress_frequency_application SET "count"="count"+? )"
                         R"(WHERE "day"=date('now', 'localtime') AND "hour"=? AND "key"=? )"
                         R"(AND "path"=? AND "profile_id"=?)"),
          QStringLiteral(R"(INSERT OR IGNORE INTO keypress_frequency_application ("day", "hour", )"
                         R"("key", "count", "path","profile_id") )"
                         R"(VALUES(date('now', 'localtime'), ?, ?, ?, ?, ?);)"))
    , m_combination(
          QStringLiteral(R"(UPDATE OR IGNORE keycombo_frequency SET "count"="count"+1 )"
                         R"(WHERE "day"=date('now', 'localtime') AND "hour"=? AND "combo"=? )"
                         R"(AND "profile_id"=?)"),
          QStringLiteral(R"(INSERT OR IGNORE INTO keycombo_frequency ("day", "hour", "combo", )"
                         R"("count", "profile_id") )"
                         R"(VALUES (date('now', 'localtime'), ?, ?, 0, ?);)"))
    , m_combinationPerApplication(
          QStringLiteral(R"(UPDATE OR IGNORE keycombo_frequency_application SET "count"="count"+1 )"
                         R"(WHERE "day"=date('now', 'localtime') AND "hour"=? AND "combo"=? )"
                         R"(AND "path"=? AND "profile_id"=?)"),
          QStringLiteral(R"(INSERT OR IGNORE INTO keycombo_frequency_application ("day", "hour", )"
                         R"("path", "combo", "count", "profile_id") )"
                         R"(VALUES (date('now', 'localtime'), ?, ?, ?, 0, ?);)"))
{
}

void KeypressesStat::discardGathered()
{
    system().retrieveIncrementalKeyCombinations();
    system().retrieveIncrementalKeyPresses();
}

void KeypressesStat::doFrequentUpdate(QDateTime now, bool)
{
    const Place place = placeAt(now);
    writeCombinations(place);

    QList<Qt::Key> keys = system().retrieveIncrementalKeyPresses();
    if (keys.isEmpty()) {
        return;
    }
    const auto count = static_cast<int>(keys.size());
    const QList<KeyCount> counts = shuffledCounts(std::move(keys));
    LocalStats::instance()->increaseKeys(count);
    if (isHeatmap()) {
        writeKeys(counts, place);
    }
    writeTotal(count, place);
    writeApplication(count, counts, place);
}

void KeypressesStat::writeCombinations(const Place& place)
{
    for (const KeyCombination& combination : system().retrieveIncrementalKeyCombinations()) {
        const QString text = combinationText(combination);
        if (!text.contains(QLatin1Char(','))) {
            continue;
        }
        m_combination.add({place.hour, text, place.profileId}, {place.hour, text, place.profileId});
        if (isFiledPerApplication(place)) {
            m_combinationPerApplication.add({place.hour, text, place.path, place.profileId},
                                            {place.hour, place.path, text, place.profileId});
        }
    }
}

QString KeypressesStat::combinationText(const KeyCombination& combination)
{
    QString text;
    const auto append = [&text](bool pressed, QLatin1String name) {
        if (pressed) {
            text += name;
        }
    };
    append(combination.control, QLatin1String("control,"));
    append(combination.option, QLatin1String("option,"));
    append(combination.shift, QLatin1String("shift,"));
    append(combination.command, QLatin1String("command,"));
    append(combination.fn, QLatin1String("fn,"));
    return text + QString::number(combination.key);
}

QList<KeypressesStat::KeyCount> KeypressesStat::shuffledCounts(QList<Qt::Key> keys)
{
    // The rows of a new hour are inserted in the order of this list, and keep it.
    std::shuffle(keys.begin(), keys.end(), std::mt19937(randomSeed()));

    QList<KeyCount> counts;
    QHash<int, qsizetype> positions;
    for (const Qt::Key key : std::as_const(keys)) {
        if (key == Qt::Key_unknown) {
            continue;
        }
        const auto known = positions.constFind(key);
        if (known != positions.cend()) {
            ++counts[*known].count;
        } else {
            positions.insert(key, counts.size());
            counts.append({key, 1});
        }
    }
    return counts;
}

void KeypressesStat::writeKeys(const QList<KeyCount>& counts, const Place& place)
{
    for (const auto& [key, count] : counts) {
        const int value = key;
        m_perKey.add({count, place.hour, value, place.profileId},
                     {place.hour, value, count, place.profileId});
    }
}

void KeypressesStat::writeTotal(int count, const Place& place)
{
    // The row is created empty: the first batch of each hour is in the rows per key and per
    // application only. Every earlier row was counted so; changing it would break comparisons.
    m_total.add({count, place.hour, place.profileId}, {place.hour, place.profileId});
}

void KeypressesStat::writeApplication(int count, const QList<KeyCount>& counts, const Place& place)
{
    if (isFiledPerApplication(place)) {
        m_perApplication.add({count, place.hour, place.path, place.profileId},
                             {place.hour, place.path, count, place.profileId});
        LocalStats::instance()->increaseAppKeys(place.path, count);
    }
    if (isHeatmap() && mayFilePerApplication(place)) {
        writeApplicationKeys(counts, place);
    }
}

void KeypressesStat::writeApplicationKeys(const QList<KeyCount>& counts, const Place& place)
{
    // Also under no path, where the application in front is unknown: over all paths, the keys add
    // up to those of the heat map.
    for (const auto& [key, count] : counts) {
        const int value = key;
        m_perKeyAndApplication.add({count, place.hour, value, place.path, place.profileId},
                                   {place.hour, value, count, place.path, place.profileId});
    }
}
