// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "system/AbstractSystem.h"
#include "system/ExclusionList.h"
#include "system/SystemPlaces.h"

#include <memory>

class AbstractSystemListener;
class Database;
class PowerMonitor;
struct CaptureState;

/// What the probes of all platforms share: the exclusions, the known applications, the counts of
/// those who hold the input monitor and the network traffic monitor, and the receiver of input
/// activity. Thread: main.
class CommonSystem : public AbstractSystem
{
public:
    /// The probe for the running platform. `database` and `listener` may be null and are not owned.
    static std::unique_ptr<CommonSystem>
    createPlatformSpecificSystem(Database* database, AbstractSystemListener* listener,
                                 const SystemPlaces& places = {});

    explicit CommonSystem(Database* database);

    /// Who is told of input activity; null for no one. Not owned.
    void setSystemListener(AbstractSystemListener* listener);
    AbstractSystemListener* systemListener() const;

    /// Tells of sleep, waking and the end of the session; null where the platform does not. Owned
    /// here.
    virtual PowerMonitor* powerMonitor() = 0;

    /// How the network is watched, or would be once a statistic asks for it.
    virtual CaptureState captureState() const = 0;

    /// Reads both exclusion tables again, after the database was cleaned or replaced.
    void reloadExclusions();

    /// The executable paths that are excluded from counting per application, in no order.
    QStringList excludedApplications() const;

    /// The hardware addresses of the network interfaces that are excluded from counting.
    QStringList excludedInterfaces() const;

    QList<KnownApplication> getApplicationDatabase() override;
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

protected:
    /// Called when the first holder comes, and when the last one goes.
    virtual void startInputMonitor() = 0;
    virtual void stopInputMonitor() = 0;
    virtual void startNetworkTrafficMonitor() = 0;
    virtual void stopNetworkTrafficMonitor() = 0;

private:
    Database* m_database;
    AbstractSystemListener* m_listener = nullptr;
    ExclusionList m_excludedApplications;
    ExclusionList m_excludedInterfaces;
    int m_inputHolders = 0;
    int m_networkHolders = 0;
};
