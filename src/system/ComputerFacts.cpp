// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/ComputerFacts.h"

namespace {

QVariantList monitorList(const QList<MonitorFacts>& monitors)
{
    QVariantList list;
    for (const MonitorFacts& monitor : monitors) {
        list.append(QVariantMap{
            {QStringLiteral("id"), monitor.id.left(ComputerFacts::LongestText)},
            {QStringLiteral("width"), monitor.pixels.width()},
            {QStringLiteral("height"), monitor.pixels.height()},
        });
    }
    return list;
}

} // namespace

ComputerFacts::ComputerFacts(const QString& root)
    : m_hardware(root)
{
}

QVariantMap ComputerFacts::read(const QList<MonitorFacts>& monitors,
                                NetworkMonitor networkMonitor) const
{
    using Kind = InputDeviceDescription::Kind;
    const bool supported = networkMonitor == NetworkMonitor::Supported;
    return {
        {QStringLiteral("ComputerModel"),
         m_hardware.model(Hardware::Vendor::Named).left(LongestText)},
        {QStringLiteral("ComputerOS"), m_hardware.operatingSystem().left(LongestText)},
        {QStringLiteral("VideoInfo"), m_hardware.videocards().left(LongestText)},
        {QStringLiteral("CPUInfo"), m_hardware.processor().left(LongestText)},
        {QStringLiteral("MemoryInfo"), m_hardware.memory()},
        {QStringLiteral("ComputerPlatform"), Hardware::platform()},
        {QStringLiteral("isNetworkMonitorSupported"),
         supported ? QStringLiteral("true") : QStringLiteral("false")},
        {QStringLiteral("KeyboardInfo"), inputDevices(Kind::Keyboard)},
        {QStringLiteral("MouseInfo"), inputDevices(Kind::Mouse)},
        {QStringLiteral("TrackpadInfo"), inputDevices(Kind::Trackpad)},
        {QStringLiteral("MonitorInfo"), monitorList(monitors)},
    };
}

QVariantList ComputerFacts::inputDevices(InputDeviceDescription::Kind kind) const
{
    QVariantList list;
    for (const QString& name : m_hardware.inputDeviceNames(kind)) {
        list.append(QVariantMap{{QStringLiteral("name"), name.left(LongestText)}});
    }
    return list;
}
