// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QTimer>

class QLabel;
class QProgressBar;
class QPushButton;

/// Shows how far the deletion of a profile has come, where it takes longer than half a second;
/// rejected when the user wants to keep the profile. Goes with `end`. Thread: main.
class DeletionDialog : public QDialog
{
    Q_OBJECT

public:
    DeletionDialog(const QString& profile, QWidget* parent);

    void setProgress(int percent); ///< 0 to 100.
    void end();

    /// The user's wish, which takes a moment: the dialog stays until `end`.
    void reject() override;

private:
    QLabel* m_text;
    QProgressBar* m_bar;
    QPushButton* m_cancel;
    QTimer m_delay;
};
