// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Utils.h"
#include "network/Interface.h"
#include "network/InterfaceBandwidth.h"
#include "network/IpAddress.h"
#include "network/NetworkTraffic.h"

#include <QDateTime>
#include <QHash>
#include <QIcon>
#include <QList>
#include <QPointF>
#include <QSet>
#include <QString>
#include <QStringList>

/// Keys pressed together, as a platform may deliver them.
struct KeyCombination
{
    bool control = false;
    bool option = false;
    bool shift = false;
    bool command = false;
    bool fn = false;
    int key = 0; ///< A stored key value, see `KeyNames`.
};

/// One application of the table of known applications.
struct KnownApplication
{
    QString path; ///< Its executable.
    QString name; ///< Its display name.
};

/// Everything the statistics ask of the machine: what was typed and clicked, which application is
/// in front, what the hardware is, what is excluded from counting.
///
/// Each `retrieve...` operation and each `get...Bandwidth...` operation takes: it returns what
/// accumulated since its previous call and starts again from nothing, so that each count reaches
/// exactly one statistic once. The statistic that owns a quantity is its only caller.
///
/// Text answers are empty, lists empty and numbers 0 where the machine does not tell. Nothing is
/// thrown. Thread: all operations on the main thread.
class AbstractSystem
{
public:
    AbstractSystem() = default;
    AbstractSystem(const AbstractSystem&) = delete;
    AbstractSystem& operator=(const AbstractSystem&) = delete;
    virtual ~AbstractSystem() = default;

    virtual QString getHostName() = 0;
    virtual QString getScreenResolution() = 0; ///< The primary screen in pixels, "1920x1080".
    virtual QString getPublicIp() = 0;         ///< Empty: no service is asked for it.
    virtual bool isInternetAvailable() = 0;
    virtual bool testingInternetAvailable() = 0; ///< An availability test is under way.
    virtual QString getOperatingSystem() = 0;    ///< Such as "Debian GNU/Linux 12 (bookworm)".
    virtual QDateTime getBootTime() = 0;         ///< Equal across calls and runs within one boot.
    virtual int getTcpConnectionCount() = 0;     ///< Established connections, IPv4 and IPv6.

    virtual QList<Qt::Key> retrieveIncrementalKeyPresses() = 0;
    virtual QList<KeyCombination> retrieveIncrementalKeyCombinations() = 0;
    virtual QList<unsigned short> retrieveIncrementalMouseClicks() = 0; ///< Button indices.
    virtual QList<QPointF> retrieveIncrementalMousePoints() = 0; ///< In primary screen sizes.
    virtual int retrieveIncrementalMouseScrolls(Utils::ScrollDirection direction) = 0;
    virtual float retrieveIncrementalMouseDistanceInches() = 0;
    virtual bool hasInputListeners() = 0; ///< At least one input device is being read.

    virtual QList<Interface> getNetworkInterfaces() = 0;
    virtual QStringList getRunningDesktopApplications() = 0; ///< Executable paths, each once.
    virtual QIcon getApplicationIcon(const QString& path) = 0;
    virtual QString getApplicationName(const QString& path) = 0;
    virtual QString getApplicationNameCached(const QString& path) = 0;
    virtual QHash<unsigned short, QString> getApplicationPorts(QSet<unsigned short> ports) = 0;
    virtual QString getActiveApplicationPath() = 0; ///< Empty when unknown.

    virtual QString getProcessorName() = 0;
    virtual QString getMemoryInfo() = 0; ///< Installed memory, "15.6 GiB".
    virtual QString getVideocardName() = 0;
    virtual QString getKeyboardHardware() = 0; ///< Device names, separated by ", ".
    virtual QString getMouseHardware() = 0;
    virtual QString getTrackpadHardware() = 0;
    virtual QString getPlatform() = 0; ///< The kernel and its architecture.
    virtual QString getComputerModel(bool withVendor) = 0;
    virtual bool isFullscreenApplicationActive() = 0;
    virtual QList<KnownApplication> getApplicationDatabase() = 0; ///< The table `applications`.

    virtual QHash<unsigned short, NetworkTraffic> getPortsBandwidth() = 0;
    virtual QHash<unsigned short, NetworkTraffic> getPortsBandwidthTCP() = 0;
    virtual QHash<unsigned short, NetworkTraffic> getPortsBandwidthUDP() = 0;
    virtual QHash<unsigned short, NetworkTraffic> getPortsBandwidthOther() = 0;
    virtual QHash<IpAddress, NetworkTraffic> getIpBandwidth() = 0;
    virtual QList<InterfaceBandwidth> getInterfacesBandwidth() = 0;
    virtual QList<InterfaceBandwidth> getInterfacesCounters() = 0;
    virtual bool isNetworkTrafficMonitorSupported() = 0;
    virtual void refreshNetworkInterfaces() = 0;

    virtual void onSystemSuspend() = 0;
    virtual void onSystemResume() = 0;
    virtual void stop() = 0; ///< Stops listeners and capture, and waits until their threads ended.

    virtual void acquireNetworkTrafficMonitor() = 0; ///< Counted, as the next.
    virtual void releaseNetworkTrafficMonitor() = 0;
    virtual void acquireInputMonitor() = 0; ///< Counted: reading lasts until each holder released.
    virtual void releaseInputMonitor() = 0;

    virtual bool shouldExcludeApplicationForStats(QString path) = 0;
    virtual void addExcludedApplicationForStats(QString path) = 0;
    virtual void deleteExcludedApplicationForStats(QString path) = 0;
    virtual bool shouldExcludeNICForStats(QString macAddress) = 0;
    virtual void addExcludedNICForStats(QString macAddress) = 0;
    virtual void deleteExcludedNICForStats(QString macAddress) = 0;

    virtual QString getNetworkPortDescription(int port, Utils::TrafficType type) = 0;
    virtual void initNetworkPortDescriptions() = 0;
    virtual bool isKnownNetworkPort(int port, Utils::TrafficType type) = 0;
};
