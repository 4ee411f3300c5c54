// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Translation.h"
#include "stats/LiveRates.h"
#include "system/AbstractSystemListener.h"
#include "ui/MessageBoxes.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

class AccountServices;
class AccountWiring;
class CachedSystem;
class ClientApiServer;
class Collector;
class CommonSystem;
class CountingSwitch;
class Database;
class LocalStats;
class MainWindowHost;
class Milestones;
class MousePointPruning;
class ProfileManager;
class ProfileWiring;
class ProxyAddress;
class SetupHost;
class TrayIcon;
class UnixSignals;

/// Creates, connects, schedules and stops the parts of the client, and decides nothing that one of
/// them can decide. One instance, on the entry point's stack. Thread: main.
class Application : public QObject, private AbstractSystemListener
{
    Q_OBJECT

public:
    Application();

    /// Stops what still runs, as `closeProcesses`.
    ~Application() override;

    static Application* instance() { return m_instance; }

    /// Builds the client; false means that it cannot run, and the user was told why. An empty
    /// translation file selects the language of the settings.
    bool start(bool networkingDisabled, bool openMainWindow, const QString& translationFile);

    /// Where the data lies: the per-user directory, or in portable mode the executable's.
    QString getDataDir();

    /// Keys, clicks and traffic of the last seconds.
    const LiveRates& liveRates() const { return m_liveRates; }

public Q_SLOTS:
    /// Acts on what another instance, or an outside watchdog, says. Unknown text is ignored.
    void singleAppMessage(const QString& message);

    /// Saves everything and ends the process with exit code 0, without returning. Further calls,
    /// from within the first, do nothing.
    void exitClient();

    /// Stops the working parts and saves their state; the process may end at any moment after.
    void closeProcesses();

    /// Starts the executable anew, without arguments, and ends this process with exit code 0.
    void restartClient();
    void clientRestart(); ///< `closeProcesses`, then `restartClient`.

    /// Hold the writing of statistics, and go on with it. What is counted meanwhile is kept.
    void startCollector();
    void pauseCollector();

    void applySettings(bool changedByUser);

    void applySettingsSlot() { applySettings(true); } ///< The user changed a setting.

    void doZurge(); ///< By the user's wish.
    void slotPerformMaintenace();
    void cleanDatabase();
    void cleanDatabaseUser();
    void pruneMousePoints();
    void togglePortableMode(); ///< Restarts the client on the other data directory.
    void cleanupMemory();      ///< Gives back what the main window held, once it is closed.
    void slotNeedTrayIconMessage(const QString& title, const QString& text);
    void openMainWindow();

Q_SIGNALS:
    void refreshTrayIcon();

    /// The process is about to end without destructors.
    void aboutToEnd();

private Q_SLOTS:
    void slotStartupDelayed();
    void updateTrayIcon();

private:
    void onKeyDown() override;

    void onKeyUp() override { m_liveRates.noteKey(); }

    void onMouseButtonDown() override;

    void onMouseButtonUp() override { m_liveRates.noteClick(); }

    bool openDatabase();
    void prepareStores(bool networkingDisabled, const QString& translationFile);
    void prepareAccount();
    void prepareCounting();
    void prepareTray();
    void watchForTheEnd();
    void prepareWindow();
    void resetProfile(const char* reason); ///< To the default one, where the setting wants it.

    void stopCollecting();
    void saveState();
    [[noreturn]] void endProcess(); ///< Exit code 0, without destructors.

    /// The way out where nothing can be drawn any more: as `exitClient`, the windows left as they
    /// are.
    static void leaveWithoutDisplay();

    static Application* m_instance;

    bool m_started = false;
    bool m_exiting = false;
    bool m_closed = false; ///< The working parts are stopped, or about to be.
    bool m_portable = false;
    QString m_userDataDirectory;
    Translation m_translation;
    MessageBoxes m_messageBoxes;

    ProfileManager* m_profiles;
    LocalStats* m_localStats;
    UnixSignals* m_signals;
    ProxyAddress* m_proxyAddress;
    std::unique_ptr<Database> m_database;
    std::unique_ptr<AccountServices> m_account;
    std::unique_ptr<CachedSystem> m_system;
    CommonSystem* m_platformSystem = nullptr; ///< Inside `m_system`.
    Collector* m_collector = nullptr;
    CountingSwitch* m_counting = nullptr;
    LiveRates m_liveRates;
    std::unique_ptr<MousePointPruning> m_mousePointPruning;
    TrayIcon* m_tray = nullptr;
    ProfileWiring* m_profileWiring = nullptr;
    Milestones* m_milestones = nullptr;
    std::unique_ptr<MainWindowHost> m_window;
    std::unique_ptr<SetupHost> m_setup;
    std::unique_ptr<AccountWiring> m_accountWiring;
    std::unique_ptr<ClientApiServer> m_clientApi;

    QTimer m_maintenanceTimer;
    QTimer m_memoryTimer;
    QTimer m_pruneTimer;
};
