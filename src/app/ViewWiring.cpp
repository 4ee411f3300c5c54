// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ViewWiring.h"

#include "profiles/MilestoneTotals.h"
#include "profiles/Milestones.h"
#include "profiles/ProfileDeletion.h"
#include "profiles/ProfileManager.h"
#include "stats/LiveRates.h"
#include "storage/Database.h"
#include "system/CommonSystem.h"
#include "ui/MainWindow.h"
#include "ui/applications/ApplicationsView.h"
#include "ui/network/NetworkView.h"
#include "ui/network/RecentTraffic.h"
#include "ui/overview/OverviewView.h"
#include "ui/profiles/ProfilesView.h"

#include <QTimer>

namespace {

constexpr int RatesMs = 500;

} // namespace

ViewWiring::ViewWiring(MainWindow& window, const Parts& parts)
    : m_window(window)
    , m_parts(parts)
{
    connect(&m_window, &MainWindow::viewMade, this, &ViewWiring::follow);
    connect(&m_parts.profiles, &ProfileManager::signalProfilesChanged, this,
            &ViewWiring::showFilter);
    connect(&m_window, &MainWindow::profileFilterChanged, this,
            [this](std::optional<int> profileId) {
                m_parts.profiles.setActiveFilterProfile(
                    profileId.value_or(ProfileManager::AllProfiles), {});
            });
    showFilter();
}

void ViewWiring::showFilter()
{
    QList<ProfileFilter::Entry> entries{
        {ProfileManager::DefaultProfileId, ProfileManager::tr("General")}};
    for (const Profile& profile : m_parts.profiles.profiles()) {
        entries.append({profile.id, profile.name});
    }
    m_window.setProfiles(entries);
}

void ViewWiring::follow(View* view)
{
    if (auto* applications = qobject_cast<ApplicationsView*>(view)) {
        followApplications(applications);
    } else if (auto* network = qobject_cast<NetworkView*>(view)) {
        followNetwork(network);
    } else if (auto* overview = qobject_cast<OverviewView*>(view)) {
        followOverview(overview);
    } else if (auto* profiles = qobject_cast<ProfilesView*>(view)) {
        followProfiles(profiles);
    }
}

void ViewWiring::exclude(const QString& path, bool excluded)
{
    if (excluded) {
        m_parts.system.addExcludedApplicationForStats(path);
    } else {
        m_parts.system.deleteExcludedApplicationForStats(path);
    }
    Q_EMIT exclusionsChanged();
}

void ViewWiring::excludeInterface(const QString& macAddress, bool excluded)
{
    if (excluded) {
        m_parts.system.addExcludedNICForStats(macAddress);
    } else {
        m_parts.system.deleteExcludedNICForStats(macAddress);
    }
    Q_EMIT exclusionsChanged();
}

void ViewWiring::followApplications(ApplicationsView* view)
{
    const auto show = [this, view] { view->setExcluded(m_parts.system.excludedApplications()); };
    connect(view, &ApplicationsView::exclusionRequested, this, &ViewWiring::exclude);
    connect(this, &ViewWiring::exclusionsChanged, view, show);
    show();
}

void ViewWiring::followNetwork(NetworkView* view)
{
    CommonSystem& system = m_parts.system;
    const auto show = [&system, view] {
        view->setExcludedInterfaces(system.excludedInterfaces());
        view->setExcludedApplications(system.excludedApplications());
    };
    connect(view, &NetworkView::applicationExclusionRequested, this, &ViewWiring::exclude);
    connect(view, &NetworkView::interfaceExclusionRequested, this, &ViewWiring::excludeInterface);
    connect(this, &ViewWiring::exclusionsChanged, view, show);
    show();
    view->setRecent([](std::optional<qint64> since) {
        return RecentTraffic::read(Database::instance()->connection(), since);
    });
    view->setPortDescription([&system](int port, Utils::TrafficType type) {
        return system.getNetworkPortDescription(port, type);
    });
    tellNetwork(*view);
    connect(&m_ratesTimer, &QTimer::timeout, view, [this, view] { tellNetwork(*view); });
    m_ratesTimer.start(RatesMs);
}

void ViewWiring::tellNetwork(NetworkView& view) const
{
    view.setRates(m_parts.rates.downloadPerSecond(), m_parts.rates.uploadPerSecond());
    if (m_parts.capture) {
        view.setCapture(m_parts.capture());
    }
    if (m_parts.hasCountries) {
        view.setCountryLookup(m_parts.hasCountries() ? NetworkView::CountryLookup::Possible
                                                     : NetworkView::CountryLookup::NoDatabase);
    }
}

void ViewWiring::followOverview(OverviewView* view)
{
    connect(&m_ratesTimer, &QTimer::timeout, this, [this, view] {
        view->setRates(m_parts.rates.keysPerSecond(), m_parts.rates.clicksPerSecond());
    });
    m_ratesTimer.start(RatesMs);
}

void ViewWiring::followProfiles(ProfilesView* view)
{
    ProfileManager& profiles = m_parts.profiles;
    view->setNameProblem([this](int id, const QString& name) { return nameProblem(id, name); });
    const auto show = [this, view] { showProfiles(view); };
    connect(&profiles, &ProfileManager::signalProfilesChanged, this, show);
    connect(&profiles, &ProfileManager::signalActiveStatsProfileChanged, this, show);
    connect(view, &ProfilesView::profileAdded, &profiles, &ProfileManager::addProfile);
    connect(view, &ProfilesView::profileRenamed, &profiles, &ProfileManager::editProfileName);
    connect(view, &ProfilesView::profileActivated, this, &ViewWiring::activateProfile);
    show();
    followDeletion(view);
    followMilestones(view);
}

void ViewWiring::followDeletion(ProfilesView* view)
{
    ProfileDeletion& deletion = m_parts.deletion;
    connect(view, &ProfilesView::profileDeleted, this, [&deletion, view](int id) {
        if (!deletion.start(id)) {
            view->endDeletion();
        }
    });
    connect(view, &ProfilesView::deletionCancelled, &deletion, &ProfileDeletion::cancel);
    connect(&deletion, &ProfileDeletion::progress, view, &ProfilesView::setDeletionProgress);
    connect(&deletion, &ProfileDeletion::finished, view, &ProfilesView::endDeletion);
}

void ViewWiring::followMilestones(ProfilesView* view)
{
    Milestones& milestones = m_parts.milestones;
    connect(&milestones, &Milestones::signalMilestonesChanged, this,
            [this, view] { showMilestones(view); });
    connect(view, &ProfilesView::milestoneRemoved, &milestones, &Milestones::remove);
    connect(view, &ProfilesView::milestoneSaved, &milestones,
            [&milestones](const MilestoneEntry& entry) {
                const Milestones::Choice choice{.name = entry.name,
                                                .statsType = entry.type,
                                                .statsAmount = entry.amount,
                                                .customMessage = entry.message};
                if (entry.id == 0) {
                    milestones.add(choice);
                } else {
                    milestones.update(entry.id, choice);
                    milestones.setActive(entry.id, entry.isActive);
                }
            });
    showMilestones(view);
}

void ViewWiring::activateProfile(int id)
{
    for (const Profile& profile : m_parts.profiles.profiles()) {
        if (profile.id == id) {
            m_parts.profiles.setActiveStatsProfile(id, profile.name);
            return;
        }
    }
    m_parts.profiles.activateDefaultProfile();
}

void ViewWiring::showProfiles(ProfilesView* view) const
{
    const int active = m_parts.profiles.getActiveStatsProfileId();
    QList<ProfileEntry> entries{{.id = ProfileManager::DefaultProfileId,
                                 .name = ProfileManager::tr("General"),
                                 .isActive = active == ProfileManager::DefaultProfileId}};
    for (const QVariant& row : m_parts.profiles.getProfiles()) {
        const QVariantMap profile = row.toMap();
        const int id = profile.value(QStringLiteral("id")).toInt();
        entries.append({.id = id,
                        .name = profile.value(QStringLiteral("name")).toString(),
                        .isActive = id == active,
                        .created = profile.value(QStringLiteral("created_at")).toDateTime()});
    }
    view->setProfiles(entries);
}

void ViewWiring::showMilestones(ProfilesView* view) const
{
    MilestoneTotals totals(Database::instance());
    QList<MilestoneEntry> entries;
    for (const Milestones::Milestone& milestone : m_parts.milestones.list()) {
        const qint64 base = milestone.lastStatsWhenTriggered;
        entries.append({.id = milestone.id,
                        .name = milestone.name,
                        .type = milestone.statsType,
                        .amount = milestone.statsAmount,
                        .isActive = milestone.milestoneActive,
                        .message = milestone.customMessage,
                        .lastHit = milestone.timeLastTriggered,
                        .base = base,
                        .total = base + Milestones::progress(milestone, totals).value_or(0)});
    }
    QList<MilestoneHit> hits;
    for (const Milestones::Hit& hit : m_parts.milestones.log()) {
        hits.append({.name = hit.name,
                     .time = hit.timeTriggered,
                     .type = hit.statsType,
                     .amount = hit.statsAmount,
                     .total = hit.statsWhenTriggered});
    }
    view->setMilestones(entries, hits);
}

QString ViewWiring::nameProblem(int id, const QString& name) const
{
    switch (m_parts.profiles.checkName(id, name)) {
    case ProfileManager::NameResult::Ok:
        break;
    case ProfileManager::NameResult::Empty:
        return tr("A profile needs a name.");
    case ProfileManager::NameResult::TooLong:
        return tr("A name has %1 characters at most.").arg(ProfileManager::LongestName);
    case ProfileManager::NameResult::Duplicate:
        return tr("There is a profile of that name already.");
    case ProfileManager::NameResult::Failed:
        return tr("The database did not answer. Try again.");
    }
    return {};
}
