// SPDX-License-Identifier: GPL-3.0-or-later
// What nearly every file of the program reads. Nothing may rely on it: each header is also
// compiled alone.
#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariant>

#include <spdlog/fmt/fmt.h>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>
