// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "system/AbstractSystem.h"

#include <QCache>

#include <functional>
#include <memory>
#include <optional>

/// A probe in front of the platform's own. Every operation forwards to that one; what is costly to
/// find out and rarely changes is kept:
///
/// - for 200 ms, so that all statistics of one tick see the same: the application in front, and
///   whether it is full-screen;
/// - for 5 s, or until `refreshNetworkInterfaces`: the network interfaces;
/// - for one hour: the names and icons of applications, of the 512 names and 128 icons used last;
/// - as long as this object lives: the boot time, the operating system, the platform, the
///   processor, the memory, the video card and the computer's model.
///
/// `getApplicationName` asks anew each time; `getApplicationNameCached` is the kept answer. Waking
/// from sleep drops what has a time limit. What is taken is never kept. Thread: main.
class CachedSystem final : public AbstractSystem
{
public:
    /// Milliseconds of a clock that never goes back.
    using Clock = std::function<qint64()>;

    static constexpr qint64 FrontWindowMs = 200;
    static constexpr qint64 NamesMs = 3'600'000;
    static constexpr qint64 InterfacesMs = 5'000;
    static constexpr int MostNames = 512;
    static constexpr int MostIcons = 128;

    /// `system` must not be null.
    explicit CachedSystem(std::unique_ptr<AbstractSystem> system, Clock clock = steadyClock);

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
    QList<KnownApplication> getApplicationDatabase() override;

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
    void stop() override;

    void acquireNetworkTrafficMonitor() override;
    void releaseNetworkTrafficMonitor() override;
    void acquireInputMonitor() override;
    void releaseInputMonitor() override;

    bool shouldExcludeApplicationForStats(QString path) override;
    void addExcludedApplicationForStats(QString path) override;
    void deleteExcludedApplicationForStats(QString path) override;
    bool shouldExcludeNICForStats(QString macAddress) override;
    void addExcludedNICForStats(QString macAddress) override;
    void deleteExcludedNICForStats(QString macAddress) override;

    QString getNetworkPortDescription(int port, Utils::TrafficType type) override;
    void initNetworkPortDescriptions() override;
    bool isKnownNetworkPort(int port, Utils::TrafficType type) override;

private:
    template <typename T>
    struct Kept
    {
        T value;
        qint64 since; ///< By `m_clock`.
    };

    static qint64 steadyClock();

    template <typename T, typename Ask>
    T kept(std::optional<Kept<T>>& place, qint64 lifeMs, Ask ask);

    template <typename T, typename Ask>
    T kept(QCache<QString, Kept<T>>& places, const QString& key, Ask ask);

    std::unique_ptr<AbstractSystem> m_system;
    Clock m_clock;

    std::optional<Kept<QString>> m_activePath;
    std::optional<Kept<bool>> m_fullscreen;
    std::optional<Kept<QList<Interface>>> m_interfaces;
    QCache<QString, Kept<QString>> m_names{MostNames};
    QCache<QString, Kept<QIcon>> m_icons{MostIcons};

    std::optional<QDateTime> m_bootTime;
    std::optional<QString> m_operatingSystem;
    std::optional<QString> m_platform;
    std::optional<QString> m_processor;
    std::optional<QString> m_memory;
    std::optional<QString> m_videocard;
    QHash<bool, QString> m_computerModels; ///< By whether the vendor is named.
};
