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

    void showProgress(qint64 done, qint64 total, const QString& step);
    void showFailed(const QString& text);
    void showStaged();

    /// A backup is being fetched or unpacked.
    bool isRunning() const { return m_state == State::Running; }

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
        Staged,
    };

    void buildChoice();
    void buildProgress();
    void setState(State state);
    void requestChosen();
    void chooseFile();
    void cancel();

    QList<OnlineBackup> m_backups;
    State m_state = State::Choosing;
    FiguresModel* m_model;
    QLabel* m_text;
    QTableView* m_table = nullptr;
    QLabel* m_consequence = nullptr;
    QPushButton* m_restore = nullptr;
    QPushButton* m_file = nullptr;
    QLabel* m_step = nullptr;
    QProgressBar* m_progress = nullptr;
    QPushButton* m_cancel = nullptr;
};
