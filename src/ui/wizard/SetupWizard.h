// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/CaptureState.h"
#include "ui/InputState.h"
#include "ui/wizard/SetupFacts.h"

#include <QList>
#include <QWidget>

#include <optional>

class AuthorizationPage;
class ChoicePage;
class DonePage;
class PermissionsPage;
class QPushButton;
class QStackedWidget;
class QUrl;
class RestorePage;
class WizardPage;

/// The first steps: what is counted and where it is kept, what may be counted, whether to link an
/// account, and what to take over from before. Nothing here is needed for counting; closing it at
/// any page leaves everything as it is. Shows what it is told, and says what the user wants by
/// signals. Thread: main.
///
///     welcome -> counted -> permissions -> account -- stays local ---------------------> done
///                                           |  |  `- has a file -> restore ------------> done
///                                           |  `- keeps the account -> restore? --------> done
///                                           `- links one -> authorization
///                                                  `- agreed -> restore? -> settings? -> done
class SetupWizard : public QWidget
{
    Q_OBJECT

public:
    enum class Start
    {
        Welcome,
        Account, ///< The account is being asked for at once.
        Restore,
    };

    explicit SetupWizard(const SetupFacts& facts, Start start = Start::Welcome,
                         QWidget* parent = nullptr);

    /// `capture` is nothing where the user does not want traffic counted.
    void setPermissions(InputState input, const std::optional<CaptureState>& capture);

    /// The page to agree on is open in the browser, or should be.
    void showBrowserPage(const QUrl& url);
    void showLinkFailed(const QString& text);
    void showAuthorized(const Authorization& authorization);

    /// In bytes; `total` is 0 or less where it is not known.
    void showRestoreFetching(qint64 received, qint64 total);
    void showRestoreUnpacking(int percent);
    void showRestoreChecking();

    // How it ended; one of these follows each wish to restore, also one that was cancelled.
    void showRestoreFailed(const QString& text);
    void showRestoreCancelled();
    void showRestoreStaged();

Q_SIGNALS:
    void permissionCheckRequested(); ///< Wants `setPermissions`; every other second while seen.
    void linkRequested();            ///< Also for another try.
    void linkCancelled();
    void restoreRequested(const OnlineBackup& backup);
    void restoreFromFileRequested(const QString& path);
    void restoreCancelled();

    /// The settings of the authorisation shown last shall be taken over.
    void settingsRestoreRequested();

    /// The user is through, or has closed the window.
    void finished();

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    enum class History
    {
        Keep,   ///< Going back leads to the page that is left.
        Forget, ///< That page is over.
    };

    void buildPages(const QString& databaseFile);
    QWidget* buildButtons();
    WizardPage* current() const;
    void turnTo(WizardPage* page, History history = History::Keep);
    void goOn();
    void goBack();
    void goOnAfterAccount(History history = History::Keep);
    void goOnAfterRestore();
    void finishUp();
    void showLinked();
    void showButtons();
    void beginLink();
    void stopLink();

    QString m_userName;
    QList<OnlineBackup> m_backups;
    bool m_hasSettings = false; ///< The account holds settings that can be taken over.

    QStackedWidget* m_pages;
    QList<WizardPage*> m_past; ///< What going back leads through.
    WizardPage* m_welcome = nullptr;
    WizardPage* m_counted = nullptr;
    PermissionsPage* m_permissions = nullptr;
    ChoicePage* m_account = nullptr;
    AuthorizationPage* m_authorization = nullptr;
    RestorePage* m_restore = nullptr;
    ChoicePage* m_settings = nullptr;
    DonePage* m_done = nullptr;
    QPushButton* m_back = nullptr;
    QPushButton* m_next = nullptr;
};
