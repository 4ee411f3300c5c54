// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Utils.h"

#include <QGuiApplication>
#include <QScreen>

int Utils::detectSystemDPI()
{
    constexpr int dpiWithoutScreen = 96;
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? static_cast<int>(screen->logicalDotsPerInch()) : dpiWithoutScreen;
}
