// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/SettingKey.h"

#include <QByteArray>

/// Every key of the table `settings`: its type, its meaning, and what a read gives where nothing is
/// stored. No other place spells a key. The sections follow the order in which defaults are stored;
/// which of the keys have one is listed in `DefaultSettings`.
namespace SettingsKeys {

// Which statistics are taken.
/// Counts keystrokes.
inline const SettingKey<bool> StatKeyboardEnable{QStringLiteral("stat_keyboard_enable"), true};
/// Also counts each key by itself.
inline const SettingKey<bool> StatKeyboardHeatmapEnable{
    QStringLiteral("stat_keyboard_heatmap_enable"), true};
/// Click positions older than three months may go.
inline const SettingKey<bool> StatMouseHeatmapPrune3Months{
    QStringLiteral("stat_mouse_heatmap_prune_3_months"), true};
/// Counts clicks, scroll steps and travel.
inline const SettingKey<bool> StatMouseEnable{QStringLiteral("stat_mouse_enable"), true};
/// Also keeps click positions.
inline const SettingKey<bool> StatMouseHeatmapEnable{QStringLiteral("stat_mouse_heatmap_enable"),
                                                     true};
/// Also counts input per application.
inline const SettingKey<bool> StatInputApplicationsEnable{
    QStringLiteral("stat_input_applications_enable"), true};
/// Measures traffic per interface.
inline const SettingKey<bool> StatNetInterfaceEnable{QStringLiteral("stat_net_interface_enable"),
                                                     true};
/// Measures traffic per application.
inline const SettingKey<bool> StatNetApplicationEnable{
    QStringLiteral("stat_net_application_enable"), true};
/// Measures traffic per transport and port.
inline const SettingKey<bool> StatNetProtocolEnable{QStringLiteral("stat_net_protocol_enable"),
                                                    true};
/// Also records ports without a known description.
inline const SettingKey<bool> StatNetProtocolRecordUnknown{
    QStringLiteral("stat_net_protocol_record_unknown"), false};
/// Measures traffic per country.
inline const SettingKey<bool> StatNetCountryEnable{QStringLiteral("stat_net_country_enable"), true};
/// Measures how long the network is up.
inline const SettingKey<bool> StatNetUptimeEnable{QStringLiteral("stat_net_uptime_enable"), true};
/// Measures how long the computer is up.
inline const SettingKey<bool> StatUptimeEnable{QStringLiteral("stat_uptime_enable"), true};
/// Records each boot.
inline const SettingKey<bool> StatBootEnable{QStringLiteral("stat_boot_enable"), true};
/// Measures how long applications are used.
inline const SettingKey<bool> StatApplicationEnable{QStringLiteral("stat_application_enable"),
                                                    true};
/// Master switch of the input statistics.
inline const SettingKey<bool> StatsInputEnable{QStringLiteral("stats_input_enable"), true};
/// Master switch of the network statistics.
inline const SettingKey<bool> StatsNetEnable{QStringLiteral("stats_net_enable"), true};
/// Master switch of the uptime statistics.
inline const SettingKey<bool> StatsUptimeEnable{QStringLiteral("stats_uptime_enable"), true};

// What is sent to the account service.
/// Sends the list of applications.
inline const SettingKey<bool> OnlineSendApplications{QStringLiteral("online_send_applications"),
                                                     true};
/// Sends the heat maps.
inline const SettingKey<bool> OnlineSendHeatmaps{QStringLiteral("online_send_heatmaps"), true};

// What the main window shows.
/// The keyboard heat map is selected.
inline const SettingKey<bool> SelectedKeyboardHeatmap{QStringLiteral("selected_keyboard_heatmap"),
                                                      true};
/// The mouse heat map is selected.
inline const SettingKey<bool> SelectedMouseHeatmap{QStringLiteral("selected_mouse_heatmap"), true};
/// The network map is selected.
inline const SettingKey<bool> SelectedNetworkHeatmap{QStringLiteral("selected_network_heatmap"),
                                                     true};
/// The input history chart is selected.
inline const SettingKey<bool> SelectedInputhistoryChart{
    QStringLiteral("selected_inputhistory_chart"), true};

// Program.
/// Starts with the desktop session.
inline const SettingKey<bool> LaunchOnStart{QStringLiteral("launch_on_start"), true};
/// Looks for new versions.
inline const SettingKey<bool> CheckForUpdates{QStringLiteral("check_for_updates"), true};
/// Beta versions count as new, too.
inline const SettingKey<bool> CheckForUpdatesIncludeBeta{
    QStringLiteral("check_for_updates_include_beta"), false};
/// Installs new versions without asking.
inline const SettingKey<bool> AutoInstallUpdates{QStringLiteral("auto_install_updates"), true};
/// Sends and fetches nothing.
inline const SettingKey<bool> WorkOffline{QStringLiteral("work_offline"), false};
/// Uses the proxy the desktop is set to.
inline const SettingKey<bool> ProxySystemEnabled{QStringLiteral("proxy_system_enabled"), true};
/// The tray icon blinks on input.
inline const SettingKey<bool> TrayiconBlinkOnActivity{QStringLiteral("trayicon_blink_on_activity"),
                                                      true};
/// Opens the main window at start.
inline const SettingKey<bool> MainwindowOpenOnStart{QStringLiteral("mainwindow_open_on_start"),
                                                    true};
/// Checks for the permission to capture packets.
inline const SettingKey<bool> LinuxCheckNetworkPermissions{
    QStringLiteral("linux_check_network_permissions"), true};
/// Kept for databases shared with other platforms; without effect on Linux.
inline const SettingKey<bool> WindowsRunAsAdministrator{
    QStringLiteral("windows_run_as_administrator"), false};
/// A double click on the tray icon zurges.
inline const SettingKey<bool> TrayDoubleclickZurge{QStringLiteral("tray_doubleclick_zurge"), true};
/// The tray icon's colour: "auto" or a variant's name.
inline const SettingKey<QString> LogoColor{QStringLiteral("logo_color"), QStringLiteral("auto")};
/// Shows no tray messages. The key is spelled so in every database.
inline const SettingKey<bool> PauzeNotifications{QStringLiteral("pauze_notifications"), false};
/// Tells of each successful zurge.
inline const SettingKey<bool> NotifyOnZurge{QStringLiteral("notify_on_zurge"), false};

// Automatic zurging.
/// After a number of keystrokes.
inline const SettingKey<bool> AutoZurgeKeysEnabled{QStringLiteral("auto_zurge_keys_enabled"), true};
/// Keystrokes.
inline const SettingKey<int> AutoZurgeKeysUnit{QStringLiteral("auto_zurge_keys_unit"), 10000};
/// After a number of clicks.
inline const SettingKey<bool> AutoZurgeClicksEnabled{QStringLiteral("auto_zurge_clicks_enabled"),
                                                     false};
/// Clicks.
inline const SettingKey<int> AutoZurgeClicksUnit{QStringLiteral("auto_zurge_clicks_unit"), 10000};
/// After an amount received.
inline const SettingKey<bool> AutoZurgeDownloadEnabled{
    QStringLiteral("auto_zurge_download_enabled"), false};
/// MiB.
inline const SettingKey<int> AutoZurgeDownloadUnit{QStringLiteral("auto_zurge_download_unit"),
                                                   10240};
/// After an amount sent.
inline const SettingKey<bool> AutoZurgeUploadEnabled{QStringLiteral("auto_zurge_upload_enabled"),
                                                     false};
/// MiB.
inline const SettingKey<int> AutoZurgeUploadUnit{QStringLiteral("auto_zurge_upload_unit"), 10240};
/// Hour of the day of the clock rule, 0 to 23; 24: every hour.
inline const SettingKey<int> AutoZurgeTimeHour{QStringLiteral("auto_zurge_time_hour"), 11};
/// After a number of hours of uptime.
inline const SettingKey<bool> AutoZurgeUptimeEnabled{QStringLiteral("auto_zurge_uptime_enabled"),
                                                     true};
/// Hours.
inline const SettingKey<int> AutoZurgeUptimeUnit{QStringLiteral("auto_zurge_uptime_unit"), 2};

// Client API.
/// The local API answers.
inline const SettingKey<bool> ClientApiHttpEnable{QStringLiteral("client_api_http_enable"), false};
/// TCP port of the HTTP server.
inline const SettingKey<int> ClientApiHttpPort{QStringLiteral("client_api_http_port"), 3490};
/// TCP port of the WebSocket server.
inline const SettingKey<int> ClientApiWebsocketPort{QStringLiteral("client_api_websocket_port"),
                                                    3489};
/// Addresses that may ask, separated by commas.
inline const SettingKey<QString> ClientApiHttpAllowedIps{
    QStringLiteral("client_api_http_allowed_ips"),
    QStringLiteral("127.0.0.1,::1,::ffff:127.0.0.1")};

// Program, continued.
/// Backs the database up online every seven days.
inline const SettingKey<bool> OnlineBackupEnabled{QStringLiteral("online_backup_enabled"), true};
/// Language code of the user interface.
inline const SettingKey<QString> ClientLanguage{QStringLiteral("client_language"),
                                                QStringLiteral("en")};
/// "auto", "light" or "dark".
inline const SettingKey<QString> Theme{QStringLiteral("theme"), QStringLiteral("auto")};
/// Sends usage figures and bug reports.
inline const SettingKey<bool> SendBugReportsAndUsageReports{
    QStringLiteral("send_bug_reports_and_usage_reports"), true};
/// Goes back to the default profile at suspend and exit.
inline const SettingKey<bool> ProfilesResetOnSleep{QStringLiteral("profiles_reset_on_sleep"), true};
/// The tray icon shows the active profile.
inline const SettingKey<bool> ProfilesChangeIconColor{QStringLiteral("profiles_change_icon_color"),
                                                      false};
/// When the last online backup was tried.
inline const SettingKey<QDateTime> OnlineBackupLast{QStringLiteral("online_backup_last")};
/// When messages were last fetched.
inline const SettingKey<QDateTime> CheckedForMessagesLast{
    QStringLiteral("checked_for_messages_last")};
/// When versions of applications were last read.
inline const SettingKey<QDateTime> LastApplicationVersionCheck{
    QStringLiteral("last_application_version_check")};
/// The list of profiles is yet to be sent.
inline const SettingKey<bool> ProfilesHaveChanged{QStringLiteral("profiles_have_changed"), false};
/// "imperial" or "metric".
inline const SettingKey<QString> MouseDistanceSystem{QStringLiteral("mouse_distance_system")};

// Without a stored default: automatic zurging.
/// Ten seconds after the start.
inline const SettingKey<bool> AutoZurgeOnStartupEnabled{
    QStringLiteral("auto_zurge_on_startup_enabled"), false};
/// By the clock.
inline const SettingKey<bool> AutoZurgeTimeEnabled{QStringLiteral("auto_zurge_time_enabled"),
                                                   false};
/// Weekday of the clock rule, 1 (Monday) to 7; 0: every day. The key is named so in every database.
inline const SettingKey<int> AutoZurgeDayHour{QStringLiteral("auto_zurge_day_hour"), 0};
/// The clock rule has zurged in its hour; cleared once that is over.
inline const SettingKey<bool> AutoZurgeDidDate{QStringLiteral("auto_zurge_did_date"), false};

// Without a stored default: state of the program.
/// The version that ran last.
inline const SettingKey<QString> ClientVersion{QStringLiteral("client_version")};
/// When click positions were last pruned.
inline const SettingKey<QDateTime> LastPruneMousepoints{QStringLiteral("last_prune_mousepoints")};
/// End of the hourly series sent last.
inline const SettingKey<QDateTime> TimeSeriesLastSent{QStringLiteral("time_series_last_sent")};
/// Seconds since the epoch.
inline const SettingKey<qint64> CheckForGeoipUpdateLast{
    QStringLiteral("check_for_geoip_update_last"), 0};
/// Seconds since the epoch.
inline const SettingKey<qint64> CheckForCompInfoLast{QStringLiteral("check_for_comp_info_last"), 0};
/// Seconds since the epoch.
inline const SettingKey<qint64> CheckForNetworkPortDescriptionsLast{
    QStringLiteral("check_for_network_port_descriptions_last"), 0};
/// The data lies beside the executable.
inline const SettingKey<bool> PortableMode{QStringLiteral("portable_mode"), false};
/// Size of the database as last reported, in MiB.
inline const SettingKey<qint64> DbSizeTotalMb{QStringLiteral("db_size_total_mb"), 0};
/// When usage figures were last sent.
inline const SettingKey<QDateTime> LastUsageStats{QStringLiteral("last_usage_stats")};
/// When the settings last changed.
inline const SettingKey<QDateTime> SettingsLastSaved{QStringLiteral("settings_last_saved")};
/// When the settings were last sent.
inline const SettingKey<QDateTime> SettingsLastUploaded{QStringLiteral("settings_last_uploaded")};

// Without a stored default: network.
/// Uses the proxy named here.
inline const SettingKey<bool> ProxyEnabled{QStringLiteral("proxy_enabled"), false};
/// Host name or address.
inline const SettingKey<QString> ProxyHostname{QStringLiteral("proxy_hostname")};
/// TCP port.
inline const SettingKey<int> ProxyPort{QStringLiteral("proxy_port"), 0};
/// The proxy asks for a name and password.
inline const SettingKey<bool> ProxyAuthEnabled{QStringLiteral("proxy_auth_enabled"), false};
/// User name at the proxy.
inline const SettingKey<QString> ProxyUser{QStringLiteral("proxy_user")};
/// Password at the proxy.
inline const SettingKey<QString> ProxyPassword{QStringLiteral("proxy_password")};
/// Address for requests, in place of the built-in one.
inline const SettingKey<QString> ServiceApiUrl{QStringLiteral("service_api_url")};
/// Address of pages opened in the browser, in place of the built-in one.
inline const SettingKey<QString> ServiceWebsiteUrl{QStringLiteral("service_website_url")};
/// Address for downloads, in place of the built-in one.
inline const SettingKey<QString> ServiceReleaseUrl{QStringLiteral("service_release_url")};

// Without a stored default: keystroke views.
/// Hides combinations with Ctrl.
inline const SettingKey<bool> CombinationsHideCtrl{QStringLiteral("combinations_hide_ctrl"), false};
/// Hides combinations with Shift.
inline const SettingKey<bool> CombinationsHideShift{QStringLiteral("combinations_hide_shift"),
                                                    false};
/// Keyboard on which keys are shown: its form, "ansi" or "iso", "-", and its letters, "qwerty"
/// (US), "qwerty-uk", "qwertz" (German), "azerty" (French), "dvorak" or "colemak", as in
/// "iso-qwertz". Without one, what is usual where the system's locale lies.
inline const SettingKey<QString> KeyboardLayout{QStringLiteral("keyboard_layout")};

// Without a stored default: the account.
/// Address the user signed in with.
inline const SettingKey<QString> OnlineEmail{QStringLiteral("online_email")};
/// The account's number; 0 when signed out.
inline const SettingKey<qint64> OnlineUserid{QStringLiteral("online_userid"), 0};
/// Rank among all accounts.
inline const SettingKey<qint64> OnlineRankKeys{QStringLiteral("online_rank_keys"), 0};
/// Rank among all accounts.
inline const SettingKey<qint64> OnlineRankClicks{QStringLiteral("online_rank_clicks"), 0};
/// Rank among all accounts.
inline const SettingKey<qint64> OnlineRankDistance{QStringLiteral("online_rank_distance"), 0};
/// Rank among all accounts.
inline const SettingKey<qint64> OnlineRankDownload{QStringLiteral("online_rank_download"), 0};
/// Rank among all accounts.
inline const SettingKey<qint64> OnlineRankUpload{QStringLiteral("online_rank_upload"), 0};
/// Rank among all accounts.
inline const SettingKey<qint64> OnlineRankUptime{QStringLiteral("online_rank_uptime"), 0};
/// Rank among all accounts.
inline const SettingKey<qint64> OnlineRankScrolls{QStringLiteral("online_rank_scrolls"), 0};
/// Keystrokes.
inline const SettingKey<qint64> OnlineTotalKeys{QStringLiteral("online_total_keys"), 0};
/// Clicks.
inline const SettingKey<qint64> OnlineTotalClicks{QStringLiteral("online_total_clicks"), 0};
/// Miles.
inline const SettingKey<double> OnlineTotalDistanceMiles{
    QStringLiteral("online_total_distance_miles"), 0.0};
/// MiB.
inline const SettingKey<qint64> OnlineTotalDownload{QStringLiteral("online_total_download"), 0};
/// MiB.
inline const SettingKey<qint64> OnlineTotalUpload{QStringLiteral("online_total_upload"), 0};
/// Seconds.
inline const SettingKey<qint64> OnlineTotalUptime{QStringLiteral("online_total_uptime"), 0};
/// Scroll steps.
inline const SettingKey<qint64> OnlineTotalScrolls{QStringLiteral("online_total_scrolls"), 0};
/// Last upload.
inline const SettingKey<QDateTime> OnlineLastHeatmapKeyboard{
    QStringLiteral("online_last_heatmap_keyboard")};
/// Last upload.
inline const SettingKey<QDateTime> OnlineLastHeatmapKeyboardApps{
    QStringLiteral("online_last_heatmap_keyboard_apps")};
/// Last upload.
inline const SettingKey<QDateTime> OnlineLastHeatmapKeycombinations{
    QStringLiteral("online_last_heatmap_keycombinations")};
/// Last upload.
inline const SettingKey<QDateTime> OnlineLastHeatmapKeycombinationsApps{
    QStringLiteral("online_last_heatmap_keycombinations_apps")};
/// Last upload.
inline const SettingKey<QDateTime> OnlineLastHeatmapButtons{
    QStringLiteral("online_last_heatmap_buttons")};
/// Last upload.
inline const SettingKey<QDateTime> OnlineLastHeatmapButtonsApps{
    QStringLiteral("online_last_heatmap_buttons_apps")};

/// The computers that this database was linked to: "user/computer", joined by ",".
inline const SettingKey<QString> OnlineLinkedComputers{QStringLiteral("online_linked_computers")};
/// Numbers of the service's messages that the user has dismissed, joined by ",".
inline const SettingKey<QString> DismissedWebsiteMessages{
    QStringLiteral("dismissed_website_messages")};

// Without a stored default: the history.
/// Differs once stored days were changed after the fact; see `HistoryStamp`, which alone uses it.
inline const SettingKey<QString> HistoryStamp{QStringLiteral("history_stamp")};

// Without a stored default: the main window.
/// As `QWidget::saveGeometry` gives it.
inline const SettingKey<QByteArray> MainwindowGeometry{QStringLiteral("mainwindow_geometry")};
/// The side bar shows icons alone.
inline const SettingKey<bool> MainwindowSidebarCollapsed{
    QStringLiteral("mainwindow_sidebar_collapsed"), false};
/// The user was told where the program is once its window is closed.
inline const SettingKey<bool> MainwindowClosingExplained{
    QStringLiteral("mainwindow_closing_explained"), false};

/// The first steps are yet to be shown.
inline const SettingKey<bool> FirstStepsDue{QStringLiteral("first_steps_due"), false};

// Without a stored default: the Geek Window.
/// Opens at start.
inline const SettingKey<bool> GeekWindowAutostart{QStringLiteral("geek_window_autostart"), false};
/// Colour, "#rrggbb" or "#aarrggbb".
inline const SettingKey<QString> GeekWindowColorBackground{
    QStringLiteral("geek_window_color_background")};
/// Colour, "#rrggbb" or "#aarrggbb".
inline const SettingKey<QString> GeekWindowColorFont{QStringLiteral("geek_window_color_font")};
/// A double click closes it.
inline const SettingKey<bool> GeekWindowDoubleclickClose{
    QStringLiteral("geek_window_doubleclick_close"), false};
/// Points; 0 for the desktop's own.
inline const SettingKey<int> GeekWindowFontSize{QStringLiteral("geek_window_font_size"), 0};
/// As `QWidget::saveGeometry` gives it.
inline const SettingKey<QByteArray> GeekWindowGeometry{QStringLiteral("geek_window_geometry")};
/// Stays above other windows.
inline const SettingKey<bool> GeekWindowOntop{QStringLiteral("geek_window_ontop"), false};
/// Labels move in steps.
inline const SettingKey<bool> GeekWindowSnapToGrid{QStringLiteral("geek_window_snap_to_grid"),
                                                   false};
/// Per cent. The key is spelled so in every database.
inline const SettingKey<int> GeekWindowTransparancy{QStringLiteral("geek_window_transparancy"), 0};

} // namespace SettingsKeys
