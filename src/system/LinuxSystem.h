// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "system/CommonSystem.h"

#include <memory>

class BootTime;
class DesktopEntries;
class Hardware;
class InputThread;
class InternetAvailability;
class MouseTravel;
class NetworkCapture;
class NetworkPorts;
class ProcessInfo;
class SocketOwners;
class WindowWatcher;

/// The Linux probe: puts each question to the class that knows, and owns them all. The X display is
/// open for as long as this object lives. Thread: main.
class LinuxSystem final : public CommonSystem
{
public:
    /// `database` may be null and is not owned.
    explicit LinuxSystem(Database* database, const SystemPlaces& places = {});
    LinuxSystem(const LinuxSystem&) = delete;
    LinuxSystem& operator=(const LinuxSystem&) = delete;
    ~LinuxSystem() override;

    /// The executable of a process, from the link "/proc/%1/exe"; empty when it cannot be told.
    QString getProcessPath(qint64 processId) const;

    PowerMonitor* powerMonitor() override;
    CaptureState captureState() const override;

    QString getHostName() override;
    QString getScreenResolution() override;
    QString getPublicIp() override;
    bool isInternetAvailable() override;
    bool testingInternetAvailable() override;
    QString getOperatingSystem() override;
    QDateTime getBootTime() override;
    int getTcpConnectionCount() override;

    QList<Qt::Key> retrieveIncrementalKeyPresses() override;
    QList<KeyCombination> retrieveIncrementalKeyCombinations() override;
    QList<unsigned short> retrieveIncrementalMouseClicks() override;
    QList<QPointF> retrieveIncrementalMousePoints() override;
    int retrieveIncrementalMouseScrolls(Utils::ScrollDirection direction) override;
    float retrieveIncrementalMouseDistanceInches() override;
    bool hasInputListeners() override;

    QList<Interface> getNetworkInterfaces() override;
    QStringList getRunningDesktopApplications() override;
    QIcon getApplicationIcon(const QString& path) override;
    QString getApplicationName(const QString& path) override;
    QString getApplicationNameCached(const QString& path) override;
    QHash<unsigned short, QString> getApplicationPorts(QSet<unsigned short> ports) override;
    QString getActiveApplicationPath() override;

    QString getProcessorName() override;
    QString getMemoryInfo() override;
    QString getVideocardName() override;
    QString getKeyboardHardware() override;
    QString getMouseHardware() override;
    QString getTrackpadHardware() override;
    QString getPlatform() override;
    QString getComputerModel(bool withVendor) override;
    bool isFullscreenApplicationActive() override;

    QHash<unsigned short, NetworkTraffic> getPortsBandwidth() override;
    QHash<unsigned short, NetworkTraffic> getPortsBandwidthTCP() override;
    QHash<unsigned short, NetworkTraffic> getPortsBandwidthUDP() override;
    QHash<unsigned short, NetworkTraffic> getPortsBandwidthOther() override;
    QHash<IpAddress, NetworkTraffic> getIpBandwidth() override;
    QList<InterfaceBandwidth> getInterfacesBandwidth() override;
    QList<InterfaceBandwidth> getInterfacesCounters() override;
    bool isNetworkTrafficMonitorSupported() override;
    void refreshNetworkInterfaces() override;

    void onSystemSuspend() override;
    void onSystemResume() override;

    QString getNetworkPortDescription(int port, Utils::TrafficType type) override;
    void initNetworkPortDescriptions() override;
    bool isKnownNetworkPort(int port, Utils::TrafficType type) override;

private:
    void startInputMonitor() override;
    void stopInputMonitor() override;
    void startNetworkTrafficMonitor() override;
    void stopNetworkTrafficMonitor() override;

    SystemPlaces m_places;
    std::unique_ptr<InputThread> m_input;
    std::unique_ptr<ProcessInfo> m_processes;
    std::unique_ptr<WindowWatcher> m_windows;
    std::unique_ptr<DesktopEntries> m_desktopEntries;
    std::unique_ptr<Hardware> m_hardware;
    std::unique_ptr<BootTime> m_bootTime;
    std::unique_ptr<InternetAvailability> m_internet;
    std::unique_ptr<MouseTravel> m_mouseTravel;
    std::unique_ptr<PowerMonitor> m_power;
    std::unique_ptr<NetworkCapture> m_capture;
    std::unique_ptr<SocketOwners> m_socketOwners;
    std::unique_ptr<NetworkPorts> m_networkPorts;
};
