// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/account/AccountState.h"

#include <QWidget>

class FiguresModel;
class QAction;
class QLabel;
class QProgressBar;

class ActionTable;

/// The backups that the service keeps, how the one being made comes along, and what can be done.
/// Thread: main.
class BackupPanel : public QWidget
{
    Q_OBJECT

public:
    explicit BackupPanel(QWidget* parent = nullptr);

    void setState(const BackupState& state);

    FiguresModel* model() const { return m_model; }

Q_SIGNALS:
    void backupRequested();
    void backupCancelled();

    /// The user wants to choose a backup to restore.
    void restoreRequested();

private:
    void press();
    void showProgress(const BackupState& state);

    FiguresModel* m_model;
    ActionTable* m_table;
    QAction* m_backUp;
    QAction* m_restore;
    QLabel* m_text;
    QProgressBar* m_progress;
    bool m_isRunning = false;
};
