// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/View.h"
#include "ui/account/AccountState.h"

class BackupPanel;
class FiguresModel;
class IdentityPanel;
class ZurgePanel;

/// The account that this computer is linked to: who is signed in, what was not sent yet and what
/// the account holds, the last zurges, and the backups. Without an account, one quiet page that
/// says what one would do. Shows what `setState` was given and asks for changes by signals.
/// Thread: main.
class AccountView : public View
{
    Q_OBJECT

public:
    explicit AccountView(ViewContext context, QWidget* parent = nullptr);

    void setState(const AccountState& state);

    bool followsScope() const override;

Q_SIGNALS:
    void linkRequested();
    void zurgeRequested(); ///< Also while working offline, which is to be told then.
    void backupRequested();
    void backupCancelled();
    void restoreRequested(); ///< The user wants to choose a backup to restore.
    void signOutRequested(); ///< The user has confirmed it.

protected:
    void refresh() override;
    void onNoticeButton() override;
    Notice::Content emptyNotice() const override;
    std::optional<Notice::Content> countingNotice() const override;

private:
    void addCounts();
    void addIdentity();
    void addZurges();
    void addBackups();
    void showIdentity();
    void confirmSignOut();

    AccountState m_state;
    FiguresModel* m_counts;
    FiguresModel* m_zurges;
    ZurgePanel* m_zurge = nullptr;
    IdentityPanel* m_identity = nullptr;
    BackupPanel* m_backups = nullptr;
    Card* m_zurgesCard = nullptr;
};
