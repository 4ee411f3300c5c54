// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QTimer>

class ApplicationsView;
class CommonSystem;
class LiveRates;
class MainWindow;
class Milestones;
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
    };

    ViewWiring(MainWindow& window, const Parts& parts);

private:
    void follow(View* view);
    void followApplications(ApplicationsView* view);
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
    QTimer m_ratesTimer; ///< Runs once the overview was made.
};
