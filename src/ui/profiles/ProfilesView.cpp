// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/profiles/ProfilesView.h"

#include "base/Format.h"
#include "storage/Settings.h"
#include "ui/Card.h"
#include "ui/FiguresModel.h"
#include "ui/profiles/ActionTable.h"
#include "ui/profiles/DeletionDialog.h"
#include "ui/profiles/MilestoneDialog.h"
#include "ui/profiles/NameDialog.h"
#include "ui/profiles/ProgressDelegate.h"

#include <QAction>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>

#include <algorithm>

namespace {

constexpr int MillisecondsPerSecond = 1000;
constexpr int CardHeight = 200;

enum ProfileColumn
{
    NameColumn,
    CountedColumn,
    KeysColumn,
    ClicksColumn,
    ScrollsColumn,
    TravelColumn,
    UptimeColumn,
    CreatedColumn,
};

enum MilestoneColumn
{
    MilestoneNameColumn,
    GoalColumn,
    ProgressColumn,
    LastHitColumn,
    StateColumn,
};

FiguresModel::Column lengthColumn(const QString& header)
{
    return {.header = header, .text = [](const QVariant& raw) {
                const QString system =
                    Settings::instance().value(SettingsKeys::MouseDistanceSystem);
                return Format::length(raw.toDouble(), Format::lengths(system));
            }};
}

QString goal(const QString& type, qint64 amount)
{
    return QStringLiteral("%1 %2").arg(Format::count(amount), MilestoneDialog::typeName(type));
}

double progress(const MilestoneEntry& milestone)
{
    const auto done = static_cast<double>(milestone.total - milestone.base);
    return milestone.amount > 0 ? std::clamp(done / static_cast<double>(milestone.amount), 0.0, 1.0)
                                : 0.0;
}

} // namespace

ProfilesView::ProfilesView(ViewContext context, QWidget* parent)
    : View(std::move(context), QStringLiteral("profilesView"), tr("Profiles"), parent)
    , m_profilesModel(new FiguresModel(
          {FiguresModel::textColumn(tr("Profile")), FiguresModel::textColumn(tr("Counting")),
           FiguresModel::countColumn(tr("Keys")), FiguresModel::countColumn(tr("Clicks")),
           FiguresModel::countColumn(tr("Scroll steps")), lengthColumn(tr("Travel")),
           FiguresModel::durationColumn(tr("Uptime")), FiguresModel::dayColumn(tr("Added"))},
          this))
    , m_milestonesModel(
          new FiguresModel({FiguresModel::textColumn(tr("Milestone")),
                            FiguresModel::textColumn(tr("After every")),
                            {.header = tr("Since the last"),
                             .text = [](const QVariant& raw) { return raw.toString(); },
                             .alignment = Qt::AlignLeft | Qt::AlignVCenter},
                            FiguresModel::dayColumn(tr("Last hit")),
                            FiguresModel::textColumn(tr("State"))},
                           this))
    , m_hitsModel(new FiguresModel({FiguresModel::textColumn(tr("Milestone")),
                                    FiguresModel::dayColumn(tr("Hit")),
                                    {.header = tr("Total then"),
                                     .text = [](const QVariant& raw) { return raw.toString(); }}},
                                   this))
{
    buildProfiles();
    buildMilestones();
}

void ProfilesView::buildProfiles()
{
    m_profilesTable = new ActionTable(m_profilesModel, tr("Profiles"));
    const auto add = [this](const char* name, const char* icon, const QString& text,
                            ActionTable::Needs needs, void (ProfilesView::*slot)()) {
        QAction* action =
            m_profilesTable->addAction(QLatin1String(name), QLatin1String(icon), text, needs);
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    add("addProfile", "add", tr("Add profile…"), ActionTable::Needs::Nothing,
        &ProfilesView::addProfile);
    m_activate = add("activateProfile", "resume", tr("Count under this profile"),
                     ActionTable::Needs::Row, &ProfilesView::activateProfile);
    m_rename = add("renameProfile", "edit", tr("Rename…"), ActionTable::Needs::Row,
                   &ProfilesView::renameProfile);
    m_delete = add("deleteProfile", "delete", tr("Delete…"), ActionTable::Needs::Row,
                   &ProfilesView::deleteProfile);
    connect(m_profilesTable, &ActionTable::rowChosen, this, &ProfilesView::followProfile);
    connect(m_profilesTable, &ActionTable::rowActivated, this, &ProfilesView::activateProfile);
    auto* card =
        new Card(QStringLiteral("profiles"), tr("Profiles"), m_profilesTable, m_profilesModel);
    card->setExplanation(tr("What is counted is filed under one profile at a time; the figures are "
                            "of the days shown"));
    card->setTableOrder(KeysColumn, Qt::DescendingOrder);
    addCard(card, {.row = 0, .height = CardHeight, .narrowHeight = CardHeight});
}

void ProfilesView::buildMilestones()
{
    m_milestonesTable = new ActionTable(m_milestonesModel, tr("Milestones"));
    m_milestonesTable->table()->setItemDelegateForColumn(ProgressColumn,
                                                         new ProgressDelegate(m_milestonesTable));
    const auto add = [this](const char* name, const char* icon, const QString& text,
                            ActionTable::Needs needs) {
        return m_milestonesTable->addAction(QLatin1String(name), QLatin1String(icon), text, needs);
    };
    connect(add("addMilestone", "add", tr("Add milestone…"), ActionTable::Needs::Nothing),
            &QAction::triggered, this, [this] { editMilestone({}); });
    const auto editChosen = [this] {
        if (const MilestoneEntry* milestone = chosenMilestone()) {
            editMilestone(*milestone);
        }
    };
    connect(add("editMilestone", "edit", tr("Edit…"), ActionTable::Needs::Row), &QAction::triggered,
            this, editChosen);
    m_switchMilestone = add("switchMilestone", "off", tr("Switch off"), ActionTable::Needs::Row);
    connect(m_switchMilestone, &QAction::triggered, this, &ProfilesView::switchMilestone);
    connect(add("removeMilestone", "delete", tr("Delete…"), ActionTable::Needs::Row),
            &QAction::triggered, this, &ProfilesView::removeMilestone);
    connect(m_milestonesTable, &ActionTable::rowChosen, this, &ProfilesView::followMilestone);
    connect(m_milestonesTable, &ActionTable::rowActivated, this, editChosen);
    auto* milestones = new Card(QStringLiteral("milestones"), tr("Milestones"), m_milestonesTable,
                                m_milestonesModel);
    milestones->setExplanation(tr("A tray message tells each time a total has grown by an amount "
                                  "of your choice"));
    addCard(milestones, {.row = 1, .height = CardHeight, .narrowHeight = CardHeight});

    auto* hits = new ActionTable(m_hitsModel, tr("Milestones hit"));
    auto* log = new Card(QStringLiteral("milestoneLog"), tr("Milestones hit"), hits, m_hitsModel);
    log->setExplanation(tr("Newest first"));
    log->setTableOrder(3, Qt::DescendingOrder);
    addCard(log, {.row = 2, .height = CardHeight, .narrowHeight = CardHeight});
}

void ProfilesView::setNameProblem(NameProblem problem)
{
    m_nameProblem = std::move(problem);
}

void ProfilesView::setProfiles(const QList<ProfileEntry>& profiles)
{
    const auto ids = [](const QList<ProfileEntry>& entries) {
        QList<int> list;
        std::transform(entries.cbegin(), entries.cend(), std::back_inserter(list),
                       [](const ProfileEntry& entry) { return entry.id; });
        return list;
    };
    const bool sameProfiles = ids(profiles) == ids(m_profiles);
    const int chosenId = chosenProfileId();
    m_profiles = profiles;
    if (!sameProfiles) {
        m_figures.clear();
        askAnew();
    }
    showProfiles(chosenId);
}

void ProfilesView::refresh()
{
    QList<HistoryScope> scopes;
    for (const ProfileEntry& profile : std::as_const(m_profiles)) {
        HistoryScope one = scope();
        one.profileId = profile.id;
        scopes.append(one);
    }
    ask<PerProfile>(
        [scopes](History& history) -> std::optional<PerProfile> {
            PerProfile figures;
            for (const HistoryScope& one : scopes) {
                const std::optional<Totals> totals = history.totals(one);
                if (!totals) {
                    return std::nullopt;
                }
                figures.append(*totals);
            }
            return figures;
        },
        [this](const PerProfile& figures) {
            m_figures = figures;
            showProfiles(chosenProfileId());
            return true;
        });
}

void ProfilesView::showProfiles(int chosenId)
{
    QList<FiguresModel::Row> rows;
    int chosenRow = -1;
    for (qsizetype i = 0; i < m_profiles.size(); ++i) {
        const ProfileEntry& profile = m_profiles.at(i);
        const Totals totals = m_figures.value(i);
        rows.append({profile.name, profile.isActive ? tr("Now") : QString(), totals.keys,
                     totals.clicks, totals.scrolls, totals.inches,
                     totals.uptimeMs / MillisecondsPerSecond, profile.created.date()});
        if (profile.id == chosenId) {
            chosenRow = static_cast<int>(i);
        }
    }
    m_profilesModel->setRows(rows);
    m_profilesTable->chooseRow(chosenRow);
    followProfile(chosenRow);
}

const ProfileEntry* ProfilesView::chosenProfile() const
{
    const int row = m_profilesTable->currentRow();
    return row >= 0 && row < m_profiles.size() ? &m_profiles.at(row) : nullptr;
}

int ProfilesView::chosenProfileId() const
{
    const ProfileEntry* profile = chosenProfile();
    return profile ? profile->id : -1;
}

void ProfilesView::followProfile(int)
{
    const ProfileEntry* profile = chosenProfile();
    const bool isOwn = profile && profile->id != 0;
    m_rename->setEnabled(isOwn);
    m_delete->setEnabled(isOwn);
    m_activate->setEnabled(profile && !profile->isActive);
}

void ProfilesView::addProfile()
{
    auto* dialog = new NameDialog(
        tr("Add profile"), tr("Add profile"), {},
        [this](const QString& name) { return m_nameProblem(0, name); }, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &NameDialog::chosen, this, &ProfilesView::profileAdded);
    dialog->open();
}

void ProfilesView::renameProfile()
{
    const ProfileEntry* profile = chosenProfile();
    if (!profile) {
        return;
    }
    const int id = profile->id;
    auto* dialog = new NameDialog(
        tr("Rename profile"), tr("Rename profile"), profile->name,
        [this, id](const QString& name) { return m_nameProblem(id, name); }, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &NameDialog::chosen, this,
            [this, id](const QString& name) { Q_EMIT profileRenamed(id, name); });
    dialog->open();
}

void ProfilesView::deleteProfile()
{
    const ProfileEntry* profile = chosenProfile();
    if (!profile) {
        return;
    }
    const int id = profile->id;
    confirm(tr("Delete profile"),
            tr("Delete the profile “%1”? Its counts are added to those of General and can no "
               "longer be told apart from them. Click positions and traffic counted under it stay "
               "in “All profiles”. This cannot be undone.")
                .arg(profile->name),
            tr("Delete profile"), [this, id, name = profile->name] { beginDeletion(id, name); });
}

void ProfilesView::beginDeletion(int id, const QString& name)
{
    m_deletion = new DeletionDialog(name, this);
    connect(m_deletion, &QDialog::rejected, this, &ProfilesView::deletionCancelled);
    Q_EMIT profileDeleted(id);
}

void ProfilesView::setDeletionProgress(int percent)
{
    if (m_deletion) {
        m_deletion->setProgress(percent);
    }
}

void ProfilesView::endDeletion()
{
    if (m_deletion) {
        m_deletion->end();
    }
}

void ProfilesView::activateProfile()
{
    const ProfileEntry* profile = chosenProfile();
    if (profile && !profile->isActive) {
        Q_EMIT profileActivated(profile->id);
    }
}

void ProfilesView::setMilestones(const QList<MilestoneEntry>& milestones,
                                 const QList<MilestoneHit>& hits)
{
    const MilestoneEntry* chosen = chosenMilestone();
    const qint64 chosenId = chosen ? chosen->id : -1;
    m_milestoneEntries = milestones;
    QList<FiguresModel::Row> rows;
    int chosenRow = -1;
    for (const MilestoneEntry& milestone : milestones) {
        if (milestone.id == chosenId) {
            chosenRow = static_cast<int>(rows.size());
        }
        rows.append({milestone.name, goal(milestone.type, milestone.amount), progress(milestone),
                     milestone.lastHit.date(), milestone.isActive ? tr("On") : tr("Off")});
    }
    m_milestonesModel->setRows(rows);
    m_milestonesTable->chooseRow(chosenRow);
    followMilestone(chosenRow);
    QList<FiguresModel::Row> hitRows;
    for (const MilestoneHit& hit : hits) {
        hitRows.append(
            {hit.name, Format::isoDateTime(hit.time), goal(hit.type, hit.amount), hit.total});
    }
    m_hitsModel->setRows(hitRows);
}

const MilestoneEntry* ProfilesView::chosenMilestone() const
{
    const int row = m_milestonesTable->currentRow();
    return row >= 0 && row < m_milestoneEntries.size() ? &m_milestoneEntries.at(row) : nullptr;
}

void ProfilesView::followMilestone(int)
{
    const MilestoneEntry* milestone = chosenMilestone();
    m_switchMilestone->setText(!milestone || milestone->isActive ? tr("Switch off")
                                                                 : tr("Switch on"));
}

void ProfilesView::editMilestone(const MilestoneEntry& milestone)
{
    auto* dialog = new MilestoneDialog(milestone, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &MilestoneDialog::chosen, this, &ProfilesView::milestoneSaved);
    dialog->open();
}

void ProfilesView::switchMilestone()
{
    if (const MilestoneEntry* milestone = chosenMilestone()) {
        MilestoneEntry changed = *milestone;
        changed.isActive = !changed.isActive;
        Q_EMIT milestoneSaved(changed);
    }
}

void ProfilesView::removeMilestone()
{
    const MilestoneEntry* milestone = chosenMilestone();
    if (!milestone) {
        return;
    }
    const qint64 id = milestone->id;
    confirm(tr("Delete milestone"),
            tr("Delete the milestone “%1”? The times at which it was hit stay in the log.")
                .arg(milestone->name),
            tr("Delete milestone"), [this, id] { Q_EMIT milestoneRemoved(id); });
}

void ProfilesView::confirm(const QString& title, const QString& text, const QString& action,
                           const std::function<void()>& confirmed)
{
    auto* box = new QMessageBox(QMessageBox::Question, title, text, QMessageBox::Cancel, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    QPushButton* button = box->addButton(action, QMessageBox::DestructiveRole);
    button->setObjectName(QStringLiteral("confirm"));
    box->setDefaultButton(QMessageBox::Cancel);
    connect(button, &QPushButton::clicked, this, confirmed);
    box->open();
}
