// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/account/AccountState.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>

class AccountServices;
class AccountView;
class LocalStats;
class MainWindow;
class MainWindowHost;
class QMessageBox;
class SetupHost;
class TrayIcon;

/// Shows the account in the window and in the tray, and fulfils what is wished there. Thread: main.
class AccountWiring : public QObject
{
    Q_OBJECT

public:
    /// All of it outlives this object.
    struct Parts
    {
        AccountServices& services;
        LocalStats& localStats;
        SetupHost& setup;
        TrayIcon& tray;
        MainWindowHost& window;
    };

    static constexpr qsizetype MostZurges = 50;

    explicit AccountWiring(const Parts& parts, QObject* parent = nullptr);

    /// The account as the view shows it. The zurges are those of this run.
    AccountState state() const;

private Q_SLOTS:
    void slotNeedZurgeButtonUpdated();
    void slotZurgeFinishedSuccessfully();

private:
    void followLocalStats();
    void followServices();
    void followTray();
    void followWindow(MainWindow* window);
    void followView(AccountView* view);
    ZurgeFacts zurgeFacts() const;
    void refresh();
    void refreshView();
    void takeRecord(const ZurgeRecord& record);
    void showMessageBox(const QString& title, const QString& text);

    Parts m_parts;
    QList<ZurgeRecord> m_zurges; ///< Newest first.
    QPointer<AccountView> m_view;
    QTimer m_viewTimer; ///< Runs while there is a view: counts come in all the time.
    QPointer<QMessageBox> m_box;
};
