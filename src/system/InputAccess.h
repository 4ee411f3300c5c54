// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

/// The absolute paths of the input device nodes ("event0" and so on) in `directory`, readable or
/// not, in no order. Any thread.
QStringList inputDeviceNodes(const QString& directory);

/// Whether there are any: tells a machine without devices from a user without permission. Any
/// thread.
bool hasInputDevices(const QString& directory = QStringLiteral("/dev/input"));
