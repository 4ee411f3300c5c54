// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/LinuxSystem.h"

#include "base/SnapStandardPaths.h"
#include "network/NetworkCapture.h"
#include "network/NetworkInterfaces.h"
#include "network/NetworkPorts.h"
#include "network/SocketOwners.h"
#include "system/BootTime.h"
#include "system/DesktopEntries.h"
#include "system/Hardware.h"
#include "system/InputThread.h"
#include "system/InternetAvailability.h"
#include "system/MouseTravel.h"
#include "system/PowerMonitor.h"
#include "system/ProcessInfo.h"
#include "system/WindowWatcher.h"

#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QSysInfo>

namespace {

QString dataDirectory(const SystemPlaces& places)
{
    return places.dataDirectory.isEmpty()
               ? SnapStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
               : places.dataDirectory;
}

} // namespace

LinuxSystem::LinuxSystem(Database* database, const SystemPlaces& places)
    : CommonSystem(database)
    , m_places(places)
    , m_input(
          std::make_unique<InputThread>([this] { return systemListener(); }, places.inputDirectory))
    , m_processes(std::make_unique<ProcessInfo>(places.root))
    , m_windows(std::make_unique<WindowWatcher>(*m_processes))
    , m_desktopEntries(std::make_unique<DesktopEntries>())
    , m_hardware(std::make_unique<Hardware>(places.root))
    , m_bootTime(std::make_unique<BootTime>(places.root, dataDirectory(places)))
    , m_internet(std::make_unique<InternetAvailability>())
    , m_mouseTravel(std::make_unique<MouseTravel>(&Utils::detectSystemDPI))
    , m_power(std::make_unique<PowerMonitor>())
    , m_capture(std::make_unique<NetworkCapture>(places.root))
    , m_socketOwners(std::make_unique<SocketOwners>(places.root))
    , m_networkPorts(std::make_unique<NetworkPorts>())
{
}

LinuxSystem::~LinuxSystem() = default;

QString LinuxSystem::getProcessPath(qint64 processId) const
{
    return m_processes->processPath(processId);
}

PowerMonitor* LinuxSystem::powerMonitor()
{
    return m_power.get();
}

CaptureState LinuxSystem::captureState() const
{
    return m_capture->state();
}

QString LinuxSystem::getHostName()
{
    return QSysInfo::machineHostName();
}

QString LinuxSystem::getScreenResolution()
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen) {
        return {};
    }
    const QSizeF pixels = QSizeF(screen->size()) * screen->devicePixelRatio();
    return QStringLiteral("%1x%2").arg(qRound(pixels.width())).arg(qRound(pixels.height()));
}

QString LinuxSystem::getPublicIp()
{
    return {}; // Only a service on the internet could tell, and none is asked.
}

bool LinuxSystem::isInternetAvailable()
{
    return m_internet->isAvailable();
}

bool LinuxSystem::testingInternetAvailable()
{
    return false; // The answer is known at once; there is no test to wait for.
}

QString LinuxSystem::getOperatingSystem()
{
    return m_hardware->operatingSystem();
}

QDateTime LinuxSystem::getBootTime()
{
    return m_bootTime->value();
}

int LinuxSystem::getTcpConnectionCount()
{
    return m_hardware->tcpConnections();
}

QList<Qt::Key> LinuxSystem::retrieveIncrementalKeyPresses()
{
    return m_input->takeKeyPresses();
}

QList<KeyCombination> LinuxSystem::retrieveIncrementalKeyCombinations()
{
    return {}; // The listener sees keys, not which of them belong together.
}

QList<unsigned short> LinuxSystem::retrieveIncrementalMouseClicks()
{
    return m_input->takeMouseClicks();
}

QList<QPointF> LinuxSystem::retrieveIncrementalMousePoints()
{
    return m_input->takeMousePoints();
}

int LinuxSystem::retrieveIncrementalMouseScrolls(Utils::ScrollDirection direction)
{
    switch (direction) {
    case Utils::ScrollDirection::Up:
        return m_input->takeMouseScrollsUp();
    case Utils::ScrollDirection::Down:
        return m_input->takeMouseScrollsDown();
    case Utils::ScrollDirection::Left:
        return m_input->takeMouseScrollsLeft();
    case Utils::ScrollDirection::Right:
        return m_input->takeMouseScrollsRight();
    }
    return 0;
}

float LinuxSystem::retrieveIncrementalMouseDistanceInches()
{
    return m_mouseTravel->inches(m_input->takeMouseDistancePixels());
}

bool LinuxSystem::hasInputListeners()
{
    return m_input->hasListeners();
}

QList<Interface> LinuxSystem::getNetworkInterfaces()
{
    return networkInterfaces(QDir(m_places.root).filePath(QStringLiteral("sys/class/net")));
}

QStringList LinuxSystem::getRunningDesktopApplications()
{
    return m_windows->applicationPaths();
}

QIcon LinuxSystem::getApplicationIcon(const QString& path)
{
    return m_desktopEntries->icon(path);
}

QString LinuxSystem::getApplicationName(const QString& path)
{
    return m_desktopEntries->name(path);
}

QString LinuxSystem::getApplicationNameCached(const QString& path)
{
    return getApplicationName(path); // The cache stands in front of this object.
}

QString LinuxSystem::getActiveApplicationPath()
{
    return m_windows->activeApplicationPath();
}

QString LinuxSystem::getProcessorName()
{
    return m_hardware->processor();
}

QString LinuxSystem::getMemoryInfo()
{
    return m_hardware->memory();
}

QString LinuxSystem::getVideocardName()
{
    return m_hardware->videocards();
}

QString LinuxSystem::getKeyboardHardware()
{
    return m_hardware->inputDevices(InputDeviceDescription::Kind::Keyboard);
}

QString LinuxSystem::getMouseHardware()
{
    return m_hardware->inputDevices(InputDeviceDescription::Kind::Mouse);
}

QString LinuxSystem::getTrackpadHardware()
{
    return m_hardware->inputDevices(InputDeviceDescription::Kind::Trackpad);
}

QString LinuxSystem::getPlatform()
{
    return Hardware::platform();
}

QString LinuxSystem::getComputerModel(bool withVendor)
{
    return m_hardware->model(withVendor ? Hardware::Vendor::Named : Hardware::Vendor::LeftOut);
}

bool LinuxSystem::isFullscreenApplicationActive()
{
    return m_windows->isFullscreenWindowActive();
}

QHash<unsigned short, QString> LinuxSystem::getApplicationPorts(QSet<unsigned short> ports)
{
    return m_socketOwners->find(ports);
}

QHash<unsigned short, NetworkTraffic> LinuxSystem::getPortsBandwidth()
{
    return m_capture->packets().getPortsBandwidth();
}

QHash<unsigned short, NetworkTraffic> LinuxSystem::getPortsBandwidthTCP()
{
    return m_capture->packets().getPortsBandwidthTCP();
}

QHash<unsigned short, NetworkTraffic> LinuxSystem::getPortsBandwidthUDP()
{
    return m_capture->packets().getPortsBandwidthUDP();
}

QHash<unsigned short, NetworkTraffic> LinuxSystem::getPortsBandwidthOther()
{
    return m_capture->packets().getPortsBandwidthOther();
}

QHash<IpAddress, NetworkTraffic> LinuxSystem::getIpBandwidth()
{
    return m_capture->packets().getIpBandwidth();
}

QList<InterfaceBandwidth> LinuxSystem::getInterfacesBandwidth()
{
    return m_capture->packets().getInterfacesBandwidth();
}

QList<InterfaceBandwidth> LinuxSystem::getInterfacesCounters()
{
    return m_capture->takeInterfacesCounters();
}

bool LinuxSystem::isNetworkTrafficMonitorSupported()
{
    return m_capture->packets().isSupported();
}

void LinuxSystem::refreshNetworkInterfaces()
{
    m_capture->updateNetworkDevices();
}

QString LinuxSystem::getNetworkPortDescription(int port, Utils::TrafficType type)
{
    return m_networkPorts->description(port, type);
}

void LinuxSystem::initNetworkPortDescriptions()
{
    m_networkPorts->load(dataDirectory(m_places));
}

bool LinuxSystem::isKnownNetworkPort(int port, Utils::TrafficType type)
{
    return m_networkPorts->isKnown(port, type);
}

// What was counted waits in memory, which sleep keeps.
void LinuxSystem::onSystemSuspend() {}

void LinuxSystem::onSystemResume()
{
    // The input listener follows devices that come and go by itself.
    m_capture->updateNetworkDevices();
}

void LinuxSystem::startInputMonitor()
{
    m_input->start();
}

void LinuxSystem::stopInputMonitor()
{
    m_input->stop();
}

void LinuxSystem::startNetworkTrafficMonitor()
{
    m_capture->start();
}

void LinuxSystem::stopNetworkTrafficMonitor()
{
    m_capture->stop();
}
