// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/BrowserAuthorization.h"
#include "ui/wizard/WizardPage.h"

class FiguresModel;
class QLabel;
class QProgressBar;
class QTableView;

/// Offers the backups that the service keeps, and one in a file, and shows how the restoring comes
/// along. Thread: main.
class RestorePage : public WizardPage
{
    Q_OBJECT

public:
    explicit RestorePage(QWidget* parent = nullptr);

    /// Newest first.
    void setBackups(const QList<OnlineBackup>& backups);

    /// In bytes; `total` is 0 or less where it is not known.
    void showFetching(qint64 received, qint64 total);
    void showUnpacking(int percent);
    void showChecking();
    void showCancelled();
    void showFailed(const QString& text);
    void showStaged();

    /// A backup is being fetched or unpacked.
    bool isRunning() const { return m_state == State::Running || m_state == State::Cancelling; }

    bool isCancelling() const { return m_state == State::Cancelling; }

    bool isStaged() const { return m_state == State::Staged; }

    QString nextText() const override;
    QString backText() const override;
    bool canGoOn() const override;
    void takeFocus() override;

Q_SIGNALS:
    void restoreRequested(const OnlineBackup& backup);
    void fileRequested(const QString& path);
    void cancelled();

private:
    enum class State
    {
        Choosing,
        Running,
        Cancelling,
        Staged,
    };

    void buildChoice();
    void buildProgress();
    void setState(State state);
    void showStep(const QString& text, double share);
    void requestChosen();
    void chooseFile();
    void cancel();

    QList<OnlineBackup> m_backups;
    State m_state = State::Choosing;
    FiguresModel* m_model;
    QLabel* m_text;
    QLabel* m_step; ///< Or why there was no other.
    QTableView* m_table = nullptr;
    QLabel* m_consequence = nullptr;
    QPushButton* m_restore = nullptr;
    QPushButton* m_file = nullptr;
    QProgressBar* m_progress = nullptr;
    QPushButton* m_cancel = nullptr;
};
