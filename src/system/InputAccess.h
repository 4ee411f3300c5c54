// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Whether `directory` holds input device nodes ("event*"), readable or not: tells a machine
/// without devices from a user without permission. Any thread.
bool hasInputDevices(const QString& directory = QStringLiteral("/dev/input"));
