// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/View.h"
#include "ui/profiles/ProfileTypes.h"

#include <QPointer>

class ActionTable;
class DeletionDialog;
class FiguresModel;

/// The profiles with what was counted under each over the days shown, the milestones with how far
/// each has come, and those hit. Says what the user wants by signals; what there is comes by
/// `setProfiles` and `setMilestones`. Thread: main.
class ProfilesView : public View
{
    Q_OBJECT

public:
    /// Tells what is wrong with a name for the profile `id` (0 for a new one), as a sentence; empty
    /// where it can be taken.
    using NameProblem = std::function<QString(int id, const QString& name)>;

    explicit ProfilesView(ViewContext context, QWidget* parent = nullptr);

    void setNameProblem(NameProblem problem);
    void setProfiles(const QList<ProfileEntry>& profiles);
    void setMilestones(const QList<MilestoneEntry>& milestones, const QList<MilestoneHit>& hits);

    /// While a profile is being deleted: shows how far that has come, where it takes long.
    void setDeletionProgress(int percent);

    /// It has come to an end, whatever that is.
    void endDeletion();

Q_SIGNALS:
    void profileAdded(const QString& name);
    void profileRenamed(int id, const QString& name);
    void profileDeleted(int id); ///< The user has confirmed it.
    void profileActivated(int id);
    void deletionCancelled(); ///< The user wants to keep the profile being deleted.
    void milestoneSaved(const MilestoneEntry& milestone); ///< Added where its id is 0.
    void milestoneRemoved(qint64 id);                     ///< The user has confirmed it.

protected:
    void refresh() override;

private:
    /// The figures of the profiles, in the order in which they were asked for.
    using PerProfile = QList<Totals>;

    void buildProfiles();
    void buildMilestones();
    void showProfiles(int chosenId);
    void followProfile(int row);
    void followMilestone(int row);
    const ProfileEntry* chosenProfile() const;
    int chosenProfileId() const; ///< -1 where none is chosen.
    const MilestoneEntry* chosenMilestone() const;
    void addProfile();
    void renameProfile();
    void deleteProfile();
    void beginDeletion(int id, const QString& name);
    void activateProfile();
    void editMilestone(const MilestoneEntry& milestone);
    void switchMilestone();
    void removeMilestone();
    void confirm(const QString& title, const QString& text, const QString& action,
                 const std::function<void()>& confirmed);

    NameProblem m_nameProblem;
    QList<ProfileEntry> m_profiles;
    PerProfile m_figures;
    QList<MilestoneEntry> m_milestoneEntries;
    FiguresModel* m_profilesModel;
    FiguresModel* m_milestonesModel;
    FiguresModel* m_hitsModel;
    ActionTable* m_profilesTable = nullptr;
    ActionTable* m_milestonesTable = nullptr;
    QPointer<DeletionDialog> m_deletion;
    QAction* m_activate = nullptr;
    QAction* m_rename = nullptr;
    QAction* m_delete = nullptr;
    QAction* m_switchMilestone = nullptr;
};
