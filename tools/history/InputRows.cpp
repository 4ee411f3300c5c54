// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/InputRows.h"

#include <algorithm>
#include <map>

InputRows::InputRows(const Connection& connection, Random& random, QDate pointsSince)
    : m_random(random)
    , m_pointsSince(pointsSince)
    , m_keys(connection, "INSERT INTO keypresses VALUES (?, ?, ?, ?)")
    , m_key(connection, "INSERT INTO keypress_frequency VALUES (?, ?, ?, ?, ?)")
    , m_keyOfApplication(connection,
                         "INSERT INTO keypress_frequency_application VALUES (?, ?, ?, ?, ?, ?)")
    , m_combo(connection, "INSERT INTO keycombo_frequency VALUES (?, ?, ?, ?, ?)")
    , m_comboOfApplication(connection,
                           "INSERT INTO keycombo_frequency_application VALUES (?, ?, ?, ?, ?, ?)")
    , m_clicks(connection, "INSERT INTO mouseclicks VALUES (?, ?, ?, ?)")
    , m_button(connection, "INSERT INTO mouseclicks_frequency VALUES (?, ?, ?, ?, ?)")
    , m_buttonOfApplication(
          connection, "INSERT INTO mouseclicks_frequency_application VALUES (?, ?, ?, ?, ?, ?)")
    , m_point(connection, "INSERT INTO mousepoints VALUES (?, ?, ?, ?, ?)")
    , m_travel(connection, "INSERT INTO mousedistance VALUES (?, ?, ?, ?)")
    , m_scrolls(connection, "INSERT INTO mousescrolls VALUES (?, ?, ?, ?, ?)")
    , m_application(connection, "INSERT INTO input_per_application (day, hour, path, keys, clicks, "
                                "distance_inches, scrolls, profile_id) "
                                "VALUES (?, ?, ?, ?, ?, ?, ?, ?)")
{
}

InputTotals InputRows::write(const HourCounts& hour)
{
    m_day = hour.day.toString(Qt::ISODate).toLatin1();
    const InputTotals totals{writeKeys(hour), writeClicks(hour)};
    writeTravel(hour);
    writeScrolls(hour);
    writeCombos(hour);
    for (const ApplicationHour& application : hour.inFront) {
        writeApplication(hour, application);
    }
    return totals;
}

/// What is left of an hour's amount once its first few seconds are lost.
qint64 InputRows::withoutFirstBatch(qint64 amount, int largestBatch)
{
    return std::max<qint64>(0, amount - m_random.between(1, largestBatch));
}

qint64 InputRows::writeKeys(const HourCounts& hour)
{
    constexpr int largestBatch = 40;
    std::map<int, int> keys;
    qint64 keystrokes = 0;
    for (const ApplicationHour& application : hour.inFront) {
        keystrokes += application.keystrokes();
        for (const PressedKey& key : application.keys) {
            keys[key.key] += key.count;
            m_keyOfApplication.run(m_day, hour.hour, key.key, key.count,
                                   application.application->path, hour.profile);
        }
    }
    if (keystrokes == 0) {
        return 0;
    }
    for (const auto& [key, count] : keys) {
        m_key.run(m_day, hour.hour, key, count, hour.profile);
    }
    const qint64 counted = withoutFirstBatch(keystrokes, largestBatch);
    m_keys.run(m_day, hour.hour, counted, hour.profile);
    return counted;
}

qint64 InputRows::writeClicks(const HourCounts& hour)
{
    constexpr int largestBatch = 6;
    std::array<int, Buttons.size()> buttons{};
    qint64 clicks = 0;
    for (const ApplicationHour& application : hour.inFront) {
        clicks += application.allClicks();
        for (size_t i = 0; i < Buttons.size(); ++i) {
            buttons.at(i) += application.clicks.at(i);
            if (application.clicks.at(i) > 0) {
                m_buttonOfApplication.run(m_day, hour.hour, Buttons.at(i), application.clicks.at(i),
                                          application.application->path, hour.profile);
            }
        }
    }
    if (clicks == 0) {
        return 0;
    }
    for (size_t i = 0; i < Buttons.size() && hour.day >= m_pointsSince; ++i) {
        if (buttons.at(i) > 0) {
            m_button.run(m_day, hour.hour, Buttons.at(i), buttons.at(i), hour.profile);
        }
    }
    for (const QPointF& point : hour.points) {
        m_point.run(m_day, hour.hour, point.x(), point.y(), hour.profile);
    }
    const qint64 counted = withoutFirstBatch(clicks, largestBatch);
    m_clicks.run(m_day, hour.hour, counted, hour.profile);
    return counted;
}

void InputRows::writeTravel(const HourCounts& hour)
{
    constexpr int largestBatch = 12;
    qint64 inches = 0;
    for (const ApplicationHour& application : hour.inFront) {
        inches += application.inches;
    }
    if (inches > 0) {
        m_travel.run(m_day, hour.hour, static_cast<double>(withoutFirstBatch(inches, largestBatch)),
                     hour.profile);
    }
}

void InputRows::writeScrolls(const HourCounts& hour)
{
    for (size_t i = 0; i < Directions.size(); ++i) {
        int steps = 0;
        for (const ApplicationHour& application : hour.inFront) {
            steps += application.scrolls.at(i);
        }
        m_scrolls.run(m_day, hour.hour, Directions.at(i), steps, hour.profile);
    }
}

void InputRows::writeCombos(const HourCounts& hour)
{
    std::map<QString, int> combos;
    for (const ApplicationHour& application : hour.inFront) {
        for (const ComboCount& combo : application.combos) {
            combos[combo.combo] += combo.count;
            m_comboOfApplication.run(m_day, hour.hour, combo.combo, combo.count - 1,
                                     application.application->path, hour.profile);
        }
    }
    for (const auto& [combo, count] : combos) {
        m_combo.run(m_day, hour.hour, combo, count - 1, hour.profile);
    }
}

/// Travel and scrolling are lost until a key or a click has made the row.
void InputRows::writeApplication(const HourCounts& hour, const ApplicationHour& application)
{
    const int keys = application.keystrokes();
    const int clicks = application.allClicks();
    if (keys + clicks == 0) {
        return;
    }
    const double kept = 1 - 0.05 * m_random.unit();
    m_application.run(m_day, hour.hour, application.application->path, keys, clicks,
                      static_cast<double>(static_cast<int>(application.inches * kept)),
                      static_cast<int>(application.allScrolls() * kept), hour.profile);
}
