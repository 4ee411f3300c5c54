// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/UptimeRows.h"

#include <algorithm>

namespace {

QString stored(const QDateTime& time)
{
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

} // namespace

UptimeRows::UptimeRows(const Connection& connection)
    : m_hour(connection, "INSERT INTO uptime_hour VALUES (?, ?, ?, ?)")
    , m_applicationHour(connection, "INSERT INTO application_active_hour VALUES (?, ?, ?, ?, ?)")
    , m_boot(connection, "INSERT INTO uptimes VALUES (?, ?)")
    , m_applicationUptime(connection, "INSERT INTO application_uptime (last_active, last_used, "
                                      "time, path, profile_id) VALUES (?, ?, ?, ?, ?)")
    , m_application(connection,
                    "INSERT INTO applications (path, name, icon, version) VALUES (?, ?, '', '')")
{
}

void UptimeRows::writeHour(const HourCounts& hour)
{
    const QByteArray day = hour.day.toString(Qt::ISODate).toLatin1();
    m_hour.run(day, hour.hour, hour.msecOn, hour.profile);
    for (const ApplicationHour& application : hour.inFront) {
        if (application.secondsInFront > 0) {
            m_applicationHour.run(day, hour.hour, application.secondsInFront,
                                  application.application->path, hour.profile);
        }
    }
    const qint64 seconds = hour.msecOn / 1000;
    const QDateTime time =
        QDateTime(hour.day, QTime(hour.hour, 0)).addSecs(std::max<qint64>(seconds - 1, 0));
    for (const Application* application : hour.running) {
        Running& running = m_running[{application->path, hour.profile}];
        running.seconds += seconds;
        running.lastActive = time.toUTC();
    }
    for (const ApplicationHour& application : hour.inFront) {
        m_lastUsed[application.application->path] = time.toUTC();
    }
}

qint64 UptimeRows::writeBoot(const QDateTime& boot, const QDateTime& end)
{
    m_boot.run(stored(boot), stored(end.toUTC()));
    return QDateTime(boot.date(), boot.time(), Qt::UTC).secsTo(end);
}

void UptimeRows::finish()
{
    for (const auto& [key, running] : m_running) {
        const auto& [path, profile] = key;
        const auto lastUsed = m_lastUsed.find(path);
        m_applicationUptime.run(
            stored(running.lastActive),
            stored(lastUsed == m_lastUsed.end() ? running.lastActive : lastUsed->second),
            running.seconds, path.data(), profile);
    }
    for (const Application& application : applicationCatalog()) {
        const bool known = std::ranges::any_of(m_running, [&application](const auto& running) {
            return running.first.first == application.path;
        });
        if (known) {
            m_application.run(application.path, application.name);
        }
    }
}
