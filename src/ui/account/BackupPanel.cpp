// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/account/BackupPanel.h"

#include "base/Format.h"
#include "ui/FiguresModel.h"
#include "ui/Icons.h"
#include "ui/Theme.h"
#include "ui/account/AccountTables.h"
#include "ui/profiles/ActionTable.h"

#include <QAction>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int Whole = 1000;
constexpr double Hundred = 100;
constexpr int BarHeight = 6;

QString idleText(const BackupState& state)
{
    if (!state.failure.isEmpty()) {
        return BackupPanel::tr("The last backup failed; your database is as it was. %1")
            .arg(state.failure);
    }
    const QString last =
        state.lastTried.isValid()
            ? BackupPanel::tr("Last made on %1.").arg(Format::moment(state.lastTried))
            : BackupPanel::tr("None was made on this computer yet.");
    return state.isAutomatic ? BackupPanel::tr("%1 One is made every seven days.").arg(last) : last;
}

QString runningText(const BackupState& state)
{
    if (state.totalBytes <= 0) {
        return state.step;
    }
    return BackupPanel::tr("%1 %2 of %3")
        .arg(state.step, Format::bytes(static_cast<quint64>(std::max<qint64>(state.sentBytes, 0))),
             Format::bytes(static_cast<quint64>(state.totalBytes)));
}

} // namespace

BackupPanel::BackupPanel(QWidget* parent)
    : QWidget(parent)
    , m_model(new FiguresModel(AccountTables::backupsColumns(), this))
    , m_table(new ActionTable(m_model, tr("Backups"), this))
    , m_backUp(m_table->addAction(QStringLiteral("backUp"), QStringLiteral("backup"),
                                  tr("Back up now"), ActionTable::Needs::Nothing))
    , m_restore(m_table->addAction(QStringLiteral("restore"), QStringLiteral("restore"),
                                   tr("Restore…"), ActionTable::Needs::Nothing))
    , m_text(new QLabel(this))
    , m_progress(new QProgressBar(this))
{
    m_text->setObjectName(QStringLiteral("backupText"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_progress->setObjectName(QStringLiteral("backupProgress"));
    m_progress->setAccessibleName(tr("Progress of the backup"));
    m_progress->setTextVisible(false);
    m_progress->setFixedHeight(BarHeight);
    // The list takes what room there is, and scrolls.
    m_table->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Ignored);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::Rhythm);
    layout->addWidget(m_text);
    layout->addWidget(m_progress);
    layout->addWidget(m_table, 1);
    connect(m_backUp, &QAction::triggered, this, &BackupPanel::press);
    connect(m_restore, &QAction::triggered, this, &BackupPanel::restoreRequested);
    setState({});
}

void BackupPanel::setState(const BackupState& state)
{
    m_text->setText(state.isRunning ? runningText(state) : idleText(state));
    m_isRunning = state.isRunning;
    m_backUp->setText(m_isRunning ? tr("Cancel backup") : tr("Back up now"));
    m_backUp->setIcon(
        Icons::symbol(m_isRunning ? QStringLiteral("close") : QStringLiteral("backup")));
    m_restore->setEnabled(!state.isRunning);
    showProgress(state);
    m_model->setRows(AccountTables::backups(state.kept));
}

void BackupPanel::press()
{
    if (m_isRunning) {
        Q_EMIT backupCancelled();
    } else {
        Q_EMIT backupRequested();
    }
}

void BackupPanel::showProgress(const BackupState& state)
{
    m_progress->setVisible(state.isRunning);
    const bool isUpload = state.totalBytes > 0;
    // Without a size it is only known that something is being done.
    m_progress->setRange(0, isUpload || state.percent >= 0 ? Whole : 0);
    const double share =
        isUpload ? static_cast<double>(state.sentBytes) / static_cast<double>(state.totalBytes)
                 : state.percent / Hundred;
    m_progress->setValue(static_cast<int>(std::clamp(share, 0.0, 1.0) * Whole));
}
