// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/SettingKey.h"

#include <QByteArray>

/// The keys of the table `settings` that hold the state of the windows; none has a stored default.
namespace WindowSettings {

/// As `QWidget::saveGeometry` gives it.
inline const SettingKey<QByteArray> Geometry{QStringLiteral("mainwindow_geometry")};
/// The side bar shows icons alone.
inline const SettingKey<bool> SideBarCollapsed{QStringLiteral("mainwindow_sidebar_collapsed"),
                                               false};
/// The user was told where the program is once its window is closed.
inline const SettingKey<bool> ClosingExplained{QStringLiteral("mainwindow_closing_explained"),
                                               false};

} // namespace WindowSettings
