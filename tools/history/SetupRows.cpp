// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/SetupRows.h"

#include "storage/SettingsKeys.h"

namespace {

constexpr std::array ProfileNames{"General", "Work", "Games", "Side project"};

QString stored(const QDateTime& time)
{
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

} // namespace

SetupRows::SetupRows(const Connection& connection)
    : m_profile(connection, "INSERT INTO profiles (id, name, active, created_at, updated_at) "
                            "VALUES (?, ?, ?, ?, ?)")
    , m_setting(connection, "INSERT INTO settings VALUES (?, ?)")
    , m_unsent(connection, "INSERT INTO unzurged_stats VALUES (?, ?)")
    , m_unsentOfApplication(connection,
                            "INSERT INTO pending_applications_stats (path, keys, clicks, download, "
                            "upload, uptime, distance_inches, scrolls) "
                            "VALUES (?, ?, ?, ?, ?, ?, ?, ?)")
    , m_lastUpdate(connection, "INSERT INTO last_update_time VALUES (?)")
    , m_ignoredApplication(connection, "INSERT INTO application_ignore VALUES (?)")
    , m_ignoredInterface(connection, "INSERT INTO network_interfaces_ignore VALUES (?)")
{
}

void SetupRows::writeProfile(Activity profile, const QDateTime& created, bool active)
{
    m_profile.run(static_cast<int>(profile), ProfileNames.at(static_cast<size_t>(profile)),
                  active ? 1 : 0, stored(created), stored(created));
}

void SetupRows::writeSettings(const QDateTime& end)
{
    using namespace SettingsKeys;
    // The active profile shall survive the next start.
    m_setting.run(ProfilesResetOnSleep.name(), "0");
    m_setting.run(MouseDistanceSystem.name(), "metric");
    m_setting.run(LastPruneMousepoints.name(), stored(end));
    m_setting.run(MainwindowClosingExplained.name(), "1");
    m_setting.run(FirstStepsDue.name(), "0");
    m_lastUpdate.run(stored(end));
    m_ignoredApplication.run("/usr/bin/keepassxc");
    m_ignoredInterface.run("02:42:ac:11:00:02");
}

void SetupRows::writeUnsent(const Unsent& total,
                            const std::map<std::string_view, Unsent>& applications)
{
    const auto write = [this](const char* name, qint64 value) {
        m_unsent.run(name, QByteArray::number(value));
    };
    write("keys", total.keys);
    write("clicks", total.clicks);
    write("download", total.download);
    write("upload", total.upload);
    write("uptime", total.uptime);
    write("scrolls", total.scrolls);
    write("distance_inches", total.inches);
    write("generation", 1);
    for (const auto& [path, unsent] : applications) {
        m_unsentOfApplication.run(path.data(), unsent.keys, unsent.clicks, unsent.download,
                                  unsent.upload, unsent.uptime, unsent.inches, unsent.scrolls);
    }
}
