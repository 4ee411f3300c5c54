// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/PowerMonitor.h"

#include "base/Log.h"

#include <QDBusError>

#include <utility>

PowerMonitor::PowerMonitor(QDBusConnection bus, const QString& service, QObject* parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
    if (!m_bus.isConnected()) {
        Log::info("No system bus, so sleep and shutdown are not noticed: {}",
                  m_bus.lastError().message());
        return;
    }
    listen(service, QStringLiteral("PrepareForSleep"), SLOT(prepareForSleep(bool)));
    listen(service, QStringLiteral("PrepareForShutdown"), SLOT(prepareForShutdown(bool)));
}

void PowerMonitor::prepareForSleep(bool starting)
{
    if (starting) {
        Q_EMIT suspended();
    } else {
        Q_EMIT resumed();
    }
}

void PowerMonitor::prepareForShutdown(bool starting)
{
    if (starting) {
        Q_EMIT sessionEnding();
    }
}

void PowerMonitor::listen(const QString& service, const QString& signal, const char* slot)
{
    if (!m_bus.connect(service, QStringLiteral("/org/freedesktop/login1"),
                       QStringLiteral("org.freedesktop.login1.Manager"), signal, this, slot)) {
        Log::warn("Unable to listen to {} of {}", signal, service);
    }
}
