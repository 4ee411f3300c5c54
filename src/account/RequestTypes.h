// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The names of the account service's request types, in the envelope and in `requestDone`. Any
/// thread.
namespace RequestTypes {

inline const QString Login = QStringLiteral("login");
inline const QString ClientLogin = QStringLiteral("client_login");
inline const QString InitAuthorization = QStringLiteral("client_init_authorization");
inline const QString CheckAuthorization = QStringLiteral("client_check_authorization");
inline const QString Zurge = QStringLiteral("zurge");
inline const QString PendingMessages = QStringLiteral("get_pending_messages");
inline const QString ResetToken = QStringLiteral("reset_token");
inline const QString RefreshAccountInfo = QStringLiteral("refresh_account_info");
inline const QString TestProxy = QStringLiteral("testproxy");
inline const QString BackupUploadUrl = QStringLiteral("get_db_backup_upload_url");
inline const QString BackupDownloadUrl = QStringLiteral("get_db_backup_download_url");
inline const QString UpdateRequest = QStringLiteral("update_request");
inline const QString SyncProfiles = QStringLiteral("sync_client_profiles");
inline const QString HeatmapKeyboard = QStringLiteral("upload_heatmap_keyboard");
inline const QString HeatmapKeyboardApps = QStringLiteral("upload_heatmap_keyboard_apps");
inline const QString HeatmapKeycombinations = QStringLiteral("upload_heatmap_keycombinations");
inline const QString HeatmapKeycombinationsApps =
    QStringLiteral("upload_heatmap_keycombinations_apps");
inline const QString HeatmapButtons = QStringLiteral("upload_heatmap_buttons");
inline const QString HeatmapButtonsApps = QStringLiteral("upload_heatmap_buttons_apps");
inline const QString Applications = QStringLiteral("upload_applications");
inline const QString ClientSettings = QStringLiteral("save_client_settings");
inline const QString ComputerInfo = QStringLiteral("upload_computerinfo");
inline const QString UsageStats = QStringLiteral("upload_usage_stats");
inline const QString UploadFile = QStringLiteral("upload_file");

/// Whether the service answers a request of this type where no account is signed in.
bool needsNoAccount(const QString& requestType);

} // namespace RequestTypes
