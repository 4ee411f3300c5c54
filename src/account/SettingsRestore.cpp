// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/SettingsRestore.h"

#include "account/AnswerFields.h"
#include "base/Log.h"
#include "profiles/Milestones.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/Settings.h"

#include <QSet>
#include <QSqlError>

#include <algorithm>

namespace SettingsRestore {

namespace {

constexpr qsizetype LongestText = 4096; ///< Characters; also of a path.
constexpr qsizetype MostRows = 1'000;

template <typename... Keys>
QSet<QString> namesOf(const Keys&... keys)
{
    return {keys.name()...};
}

const QSet<QString>& travelling()
{
    using namespace SettingsKeys;
    static const QSet<QString> names = namesOf(
        StatKeyboardEnable, StatKeyboardHeatmapEnable, StatMouseHeatmapPrune3Months,
        StatMouseEnable, StatMouseHeatmapEnable, StatInputApplicationsEnable,
        StatNetInterfaceEnable, StatNetApplicationEnable, StatNetProtocolEnable,
        StatNetProtocolRecordUnknown, StatNetCountryEnable, StatNetUptimeEnable, StatUptimeEnable,
        StatBootEnable, StatApplicationEnable, StatsInputEnable, StatsNetEnable, StatsUptimeEnable,
        OnlineSendApplications, OnlineSendHeatmaps, SelectedKeyboardHeatmap, SelectedMouseHeatmap,
        SelectedNetworkHeatmap, SelectedInputhistoryChart, LaunchOnStart, CheckForUpdates,
        CheckForUpdatesIncludeBeta, AutoInstallUpdates, TrayiconBlinkOnActivity,
        MainwindowOpenOnStart, LinuxCheckNetworkPermissions, WindowsRunAsAdministrator,
        TrayDoubleclickZurge, LogoColor, PauzeNotifications, NotifyOnZurge, AutoZurgeKeysEnabled,
        AutoZurgeKeysUnit, AutoZurgeClicksEnabled, AutoZurgeClicksUnit, AutoZurgeDownloadEnabled,
        AutoZurgeDownloadUnit, AutoZurgeUploadEnabled, AutoZurgeUploadUnit, AutoZurgeTimeEnabled,
        AutoZurgeTimeHour, AutoZurgeDayHour, AutoZurgeUptimeEnabled, AutoZurgeUptimeUnit,
        AutoZurgeOnStartupEnabled, OnlineBackupEnabled, ClientLanguage, Theme,
        SendBugReportsAndUsageReports, ProfilesResetOnSleep, ProfilesChangeIconColor,
        MouseDistanceSystem, CombinationsHideCtrl, CombinationsHideShift, KeyboardLayout,
        MainwindowSidebarCollapsed, MainwindowClosingExplained, GeekWindowAutostart,
        GeekWindowColorBackground, GeekWindowColorFont, GeekWindowDoubleclickClose,
        GeekWindowFontSize, GeekWindowOntop, GeekWindowSnapToGrid, GeekWindowTransparancy);
    return names;
}

bool isUsable(const QString& text)
{
    return !text.isEmpty() && text.size() <= LongestText;
}

int restoreSettings(const AnswerFields::Map& settings)
{
    int restored = 0;
    for (auto it = settings.cbegin(); it != settings.cend(); ++it) {
        const bool isText =
            it->typeId() == QMetaType::QString && it->toString().size() <= LongestText;
        if (isText && mayTravel(it.key())) {
            Settings::instance().set(it.key(), *it);
            ++restored;
        }
    }
    return restored;
}

/// Runs `statement` with the text under `field` of each object of `list`.
void restoreTexts(Database& database, const QVariant& list, const QString& field,
                  const QString& statement)
{
    DSqlQuery query(&database, statement, false);
    qsizetype rows = 0;
    for (const AnswerFields::Map& row : AnswerFields::objects(list)) {
        const QString text = AnswerFields::text(row.value(field));
        if (isUsable(text) && ++rows <= MostRows) {
            query.bindValue(0, text);
            query.exec();
        }
    }
}

void restoreLabels(Database& database, const QVariant& list)
{
    DSqlQuery query(&database,
                    QStringLiteral(R"(REPLACE INTO geekwindow_labels ("id", "val", "x", "y") )"
                                   R"(VALUES (?, ?, ?, ?))"),
                    false);
    qsizetype rows = 0;
    for (const AnswerFields::Map& row : AnswerFields::objects(list)) {
        const auto id = AnswerFields::wholeNumber(row.value(QStringLiteral("id")));
        const auto x = AnswerFields::wholeNumber(row.value(QStringLiteral("x")));
        const auto y = AnswerFields::wholeNumber(row.value(QStringLiteral("y")));
        const QString text = AnswerFields::text(row.value(QStringLiteral("val")));
        if (id && x && y && isUsable(text) && ++rows <= MostRows) {
            query.bindValue(0, *id);
            query.bindValue(1, text);
            query.bindValue(2, *x);
            query.bindValue(3, *y);
            query.exec();
        }
    }
}

bool isAlike(const Milestones::Milestone& milestone, const Milestones::Choice& choice)
{
    return milestone.name == choice.name && milestone.statsType == choice.statsType &&
           milestone.statsAmount == choice.statsAmount;
}

/// They count from the totals of this computer.
void restoreMilestones(Milestones& milestones, const QVariant& list)
{
    for (const AnswerFields::Map& row : AnswerFields::objects(list)) {
        const Milestones::Choice choice{
            .name = AnswerFields::text(row.value(QStringLiteral("name"))).trimmed(),
            .statsType = AnswerFields::text(row.value(QStringLiteral("stats_type"))),
            .statsAmount =
                AnswerFields::wholeNumber(row.value(QStringLiteral("stats_amount"))).value_or(0),
            .customMessage = AnswerFields::text(row.value(QStringLiteral("custom_message")))};
        const QList<Milestones::Milestone> known = milestones.list();
        const bool isNew = std::ranges::none_of(
            known, [&](const Milestones::Milestone& one) { return isAlike(one, choice); });
        const bool fits = isUsable(choice.name) && choice.customMessage.size() <= LongestText &&
                          known.size() < MostRows;
        const bool isActive =
            AnswerFields::wholeNumber(row.value(QStringLiteral("milestone_active"))).value_or(1) !=
            0;
        if (isNew && fits && milestones.add(choice) && !isActive) {
            milestones.setActive(milestones.list().constLast().id, false);
        }
    }
}

} // namespace

bool mayTravel(const QString& name)
{
    return travelling().contains(name);
}

void restore(const QMap<QString, QVariant>& clientSettings, Database& database,
             Milestones& milestones)
{
    const auto part = [&clientSettings](const char* name) {
        return clientSettings.value(QLatin1String(name));
    };
    QSqlDatabase connection = database.connection();
    const bool began = connection.transaction();
    const int restored = restoreSettings(AnswerFields::object(part("settings")));
    restoreLabels(database, part("geekwindow_labels"));
    restoreTexts(database, part("application_ignore"), QStringLiteral("path"),
                 QStringLiteral("INSERT OR IGNORE INTO application_ignore (path) VALUES (?)"));
    restoreTexts(
        database, part("network_interfaces_ignore"), QStringLiteral("mac_address"),
        QStringLiteral("INSERT OR IGNORE INTO network_interfaces_ignore (mac_address) VALUES (?)"));
    restoreMilestones(milestones, part("milestones"));
    if (began && !connection.commit()) {
        Log::error("Unable to store the account's settings: {}", connection.lastError().text());
        connection.rollback();
        return;
    }
    Log::info("Took over {} settings of the account", restored);
}

} // namespace SettingsRestore
