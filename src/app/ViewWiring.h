// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/CaptureState.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <optional>

class ApplicationsView;
class CommonSystem;
class LiveRates;
class MainWindow;
class Milestones;
class NetworkView;
class OverviewView;
class ProfileDeletion;
class ProfileManager;
class ProfilesView;
class View;

/// Tells the views of a main window what they cannot read by themselves, and fulfils their wishes.
/// Made with the window and gone just before it. Thread: main.
class ViewWiring : public QObject
{
    Q_OBJECT

public:
    /// What the wishes are fulfilled with; all of it outlives the window.
    struct Parts
    {
        CommonSystem& system;
        ProfileManager& profiles;
        ProfileDeletion& deletion;
        Milestones& milestones;
        LiveRates& rates;

        /// How traffic is watched now; nothing where it is not, by the user's wish. Null where
        /// that is not known.
        std::function<std::optional<CaptureState>()> capture = {};

        /// Whether a country database is open. Null where that is not known.
        std::function<bool()> hasCountries = {};
    };

    ViewWiring(MainWindow& window, const Parts& parts);

Q_SIGNALS:
    /// What is excluded from counting has changed.
    void exclusionsChanged();

private:
    void exclude(const QString& path, bool excluded);
    void excludeInterface(const QString& macAddress, bool excluded);
    void follow(View* view);
    void followApplications(ApplicationsView* view);
    void followNetwork(NetworkView* view);
    void tellNetwork(NetworkView& view) const;
    void followOverview(OverviewView* view);
    void followProfiles(ProfilesView* view);
    void followMilestones(ProfilesView* view);
    void followDeletion(ProfilesView* view);
    void showFilter();
    void activateProfile(int id);
    void showProfiles(ProfilesView* view) const;
    void showMilestones(ProfilesView* view) const;
    QString nameProblem(int id, const QString& name) const;

    MainWindow& m_window;
    Parts m_parts;
    QTimer m_ratesTimer; ///< Runs once a view was made that shows rates.
};
