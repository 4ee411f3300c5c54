// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wizard/RestorePage.h"

#include "base/Format.h"
#include "ui/FiguresModel.h"
#include "ui/Theme.h"
#include "ui/account/AccountTables.h"
#include "ui/profiles/ActionTable.h"

#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStandardPaths>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int Whole = 1000;
constexpr int TableHeight = 168;
constexpr int BarHeight = 6;

} // namespace

RestorePage::RestorePage(QWidget* parent)
    : WizardPage(QStringLiteral("restorePage"), {}, parent)
    , m_model(new FiguresModel(AccountTables::backupsColumns(), this))
    , m_text(addText({}))
    , m_step(addText({}))
{
    m_text->setObjectName(QStringLiteral("restoreText"));
    m_step->setObjectName(QStringLiteral("restoreStep"));
    buildChoice();
    buildProgress();
    body()->addStretch();
    setBackups({});
}

void RestorePage::buildChoice()
{
    auto* list = new ActionTable(m_model, tr("Backups of the database"));
    m_table = list->table();
    m_table->setMinimumHeight(TableHeight);
    body()->addWidget(list);
    m_consequence =
        addCaption(tr("The backup takes the place of the database of this computer when Tallyvane "
                      "is started again. What was counted here until then is kept aside once, as "
                      "a file beside it."));
    m_restore =
        button(QStringLiteral("restore"), QStringLiteral("restore"), tr("Restore this backup"));
    m_file =
        button(QStringLiteral("restoreFile"), QStringLiteral("open"), tr("Restore from a file…"));
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(Theme::Rhythm);
    buttons->addWidget(m_restore);
    buttons->addWidget(m_file);
    buttons->addStretch();
    body()->addLayout(buttons);
    connect(m_restore, &QPushButton::clicked, this, &RestorePage::requestChosen);
    connect(list, &ActionTable::rowActivated, this, &RestorePage::requestChosen);
    connect(list, &ActionTable::rowChosen, this,
            [this](int row) { m_restore->setEnabled(row >= 0); });
    connect(m_file, &QPushButton::clicked, this, &RestorePage::chooseFile);
}

void RestorePage::buildProgress()
{
    m_progress = new QProgressBar;
    m_progress->setObjectName(QStringLiteral("restoreProgress"));
    m_progress->setAccessibleName(tr("Progress of the restoring"));
    m_progress->setTextVisible(false);
    m_progress->setFixedHeight(BarHeight);
    m_cancel = button(QStringLiteral("cancelRestore"), {}, tr("Cancel restoring"));
    body()->addWidget(m_progress);
    body()->addWidget(m_cancel, 0, Qt::AlignLeft);
    connect(m_cancel, &QPushButton::clicked, this, &RestorePage::cancel);
}

void RestorePage::setBackups(const QList<OnlineBackup>& backups)
{
    m_backups = backups;
    m_model->setRows(AccountTables::backups(backups));
    if (backups.isEmpty()) {
        setTitle(tr("Restore from a file"));
        m_text->setText(tr("Choose a backup of the database, as Tallyvane makes it: an archive "
                           "whose name ends in “.zip”, or the database itself."));
    } else {
        setTitle(tr("Restore Database?"));
        m_text->setText(tr("Good news! I found your previous client database backups, do you want "
                           "to restore?"));
        m_table->selectRow(0);
    }
    setState(State::Choosing);
}

void RestorePage::setState(State state)
{
    m_state = state;
    const bool isChoosing = state == State::Choosing;
    const bool hasList = isChoosing && !m_backups.isEmpty();
    m_table->parentWidget()->setVisible(hasList);
    m_restore->setVisible(hasList);
    m_text->setVisible(isChoosing);
    m_consequence->setVisible(isChoosing);
    m_file->setVisible(isChoosing);
    m_progress->setVisible(isRunning());
    m_cancel->setVisible(isRunning());
    m_cancel->setEnabled(!isCancelling());
    m_step->setVisible(!isChoosing);
    Q_EMIT changed();
}

void RestorePage::requestChosen()
{
    const QModelIndexList rows = m_table->selectionModel()->selectedRows();
    if (rows.isEmpty() || m_state != State::Choosing) {
        return;
    }
    setState(State::Running);
    showFetching(0, 0);
    m_cancel->setFocus();
    Q_EMIT restoreRequested(m_backups.at(rows.constFirst().row()));
}

void RestorePage::chooseFile()
{
    const QString home = QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
    auto* dialog = new QFileDialog(this, tr("Restore from a file"), home,
                                   tr("Backups of the database (*.zip *.db);;All files (*)"));
    dialog->setObjectName(QStringLiteral("restoreFileDialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& path) {
        setState(State::Running);
        showStep(tr("Reading the backup…"), -1);
        m_cancel->setFocus();
        Q_EMIT fileRequested(path);
    });
    dialog->open();
}

void RestorePage::cancel()
{
    setState(State::Cancelling);
    m_step->setText(tr("Cancelling…"));
    Q_EMIT cancelled();
}

/// A negative share is one that is not known.
void RestorePage::showStep(const QString& text, double share)
{
    if (m_state != State::Running) {
        return; // It was on its way when it was cancelled.
    }
    m_step->setText(text);
    m_progress->setRange(0, share >= 0 ? Whole : 0);
    m_progress->setValue(static_cast<int>(std::clamp(share, 0.0, 1.0) * Whole));
}

void RestorePage::showFetching(qint64 received, qint64 total)
{
    if (total <= 0) {
        showStep(tr("Fetching the backup…"), -1);
        return;
    }
    const qint64 there = std::clamp<qint64>(received, 0, total);
    showStep(tr("Fetching the backup: %1 of %2")
                 .arg(Format::bytes(static_cast<quint64>(there)),
                      Format::bytes(static_cast<quint64>(total))),
             static_cast<double>(there) / static_cast<double>(total));
}

void RestorePage::showUnpacking(int percent)
{
    constexpr double hundred = 100;
    showStep(tr("Unpacking the backup: %1 %").arg(percent), percent / hundred);
}

void RestorePage::showChecking()
{
    showStep(tr("Checking the backup…"), -1);
}

void RestorePage::showCancelled()
{
    setState(State::Choosing);
    takeFocus();
}

void RestorePage::showFailed(const QString& text)
{
    setState(State::Choosing);
    m_step->setText(tr("The backup was not restored; your database is as it was. %1").arg(text));
    m_step->show();
    takeFocus();
}

void RestorePage::showStaged()
{
    m_step->setText(tr("The backup is ready. It takes the place of the database when Tallyvane is "
                       "started again; the present database is kept aside once, as a file beside "
                       "it."));
    setState(State::Staged);
}

QString RestorePage::nextText() const
{
    return isStaged() ? WizardPage::nextText() : tr("Go on without restoring");
}

QString RestorePage::backText() const
{
    return m_state == State::Choosing ? WizardPage::backText() : QString();
}

bool RestorePage::canGoOn() const
{
    return !isRunning();
}

void RestorePage::takeFocus()
{
    if (isRunning()) {
        m_cancel->setFocus();
    } else if (m_state == State::Choosing) {
        (m_backups.isEmpty() ? static_cast<QWidget*>(m_file) : m_table)->setFocus();
    }
}
