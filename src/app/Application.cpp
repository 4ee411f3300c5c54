// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Application.h"

#include "account/LocalStats.h"
#include "account/ProxySettings.h"
#include "account/Zurge.h"
#include "app/AccountServices.h"
#include "app/AccountWiring.h"
#include "app/ClientApiWiring.h"
#include "app/CountingSwitch.h"
#include "app/KeysToday.h"
#include "app/MainWindowHost.h"
#include "app/PortableMode.h"
#include "app/ProfileWiring.h"
#include "app/Requirements.h"
#include "app/SetupHost.h"
#include "app/SleepWiring.h"
#include "app/UnixSignals.h"
#include "base/Log.h"
#include "base/SnapStandardPaths.h"
#include "base/Version.h"
#include "clientapi/ClientApiServer.h"
#include "network/ProxyAddress.h"
#include "profiles/Milestones.h"
#include "profiles/ProfileDeletion.h"
#include "profiles/ProfileManager.h"
#include "stats/AllStats.h"
#include "stats/Collector.h"
#include "storage/Database.h"
#include "storage/MousePointPruning.h"
#include "storage/Settings.h"
#include "storage/StartupRepair.h"
#include "system/Autostart.h"
#include "system/CachedSystem.h"
#include "system/CommonSystem.h"
#include "system/PowerMonitor.h"
#include "ui/Theme.h"
#include "ui/TrayIcon.h"

#include <QGuiApplication>
#include <QIcon>
#include <QLocale>
#include <QProcess>

#include <cstdlib>

namespace {

constexpr int MaintenanceMs = 840'000;
constexpr int MemoryCleanupMs = 10'000;
constexpr int PruneMs = 3'600'000;

} // namespace

Application* Application::m_instance = nullptr;

Application::Application()
    : m_profiles(new ProfileManager(this))
    , m_localStats(new LocalStats(this))
    , m_signals(new UnixSignals(this))
    , m_proxyAddress(new ProxyAddress(this))
{
    m_instance = this;
    QCoreApplication::setApplicationName(QStringLiteral("Tallyvane"));
    QCoreApplication::setApplicationVersion(versionString());
    QCoreApplication::setOrganizationDomain(QStringLiteral("tallyvane.example"));
    QGuiApplication::setDesktopFileName(QStringLiteral("tallyvane"));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    connect(this, &Application::refreshTrayIcon, this, &Application::updateTrayIcon);
    watchForTheEnd();
}

Application::~Application()
{
    closeProcesses();
    m_instance = nullptr;
}

void Application::watchForTheEnd()
{
    connect(m_signals, &UnixSignals::terminationRequested, this, &Application::exitClient);
    // The session manager's way to end a program, once no other has objected.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &Application::exitClient);
    connect(qApp, &QGuiApplication::commitDataRequest, this, [this] {
        if (m_collector) {
            m_collector->flush();
            m_collector->saveLocal();
        }
    });
}

bool Application::start(bool networkingDisabled, bool openMainWindow,
                        const QString& translationFile)
{
    m_portable = PortableMode::isActive();
    if (!Requirements::areMet(m_messageBoxes)) {
        return false;
    }
    const bool restored = StartupRepair::applyPendingRestore(getDataDir());
    if (!openDatabase()) {
        return false;
    }
    prepareStores(networkingDisabled, translationFile);
    prepareAccount();
    if (restored) {
        // What was just restored counts as freshly backed up.
        Settings::instance().setValue(SettingsKeys::OnlineBackupLast, QDateTime::currentDateTime());
    }
    prepareCounting();
    QTimer::singleShot(0, this, &Application::slotStartupDelayed);
    m_account->fetchMissingFiles();
    prepareTray();
    prepareWindow();
    Log::info("Tallyvane {} has started", versionString());
    if (openMainWindow && Settings::instance().value(SettingsKeys::MainwindowOpenOnStart)) {
        this->openMainWindow();
        m_setup->offer();
    }
    m_clientApi = ClientApiWiring::create(*this, *m_window, *m_localStats, *m_profiles);
    StartupRepair::removeNegativeDistances(*m_database);
    m_started = true;
    m_account->repeatLastWeek();
    return true;
}

bool Application::openDatabase()
{
    m_database = std::make_unique<Database>(getDataDir(), m_messageBoxes);
    switch (m_database->state()) {
    case Database::State::Open:
    case Database::State::ReadOnly:
        return true;
    case Database::State::NewerVersion:
        exitClient();
        return false;
    case Database::State::Closed:
    case Database::State::Failed:
        break;
    }
    return false;
}

void Application::prepareStores(bool networkingDisabled, const QString& translationFile)
{
    Settings& settings = Settings::instance();
    settings.init(m_database.get());
    settings.initializeDefaultSettings();
    SetupHost::noteFirstStart();
    m_translation.install(translationFile, settings.value(SettingsKeys::ClientLanguage));
    if (networkingDisabled) {
        settings.setValue(SettingsKeys::StatsNetEnable, false);
    }
    m_localStats->setup(getDataDir());
}

void Application::prepareAccount()
{
    m_account = std::make_unique<AccountServices>(
        AccountServices::Parts{*m_database, *m_localStats, *m_profiles, getDataDir(),
                               [this] { return m_system->isNetworkTrafficMonitorSupported(); }});
    connect(&m_account->backups(), &OnlineBackups::countingPauseNeeded, this,
            &Application::pauseCollector);
    connect(&m_account->backups(), &OnlineBackups::countingResumptionNeeded, this,
            &Application::startCollector);
    connect(m_account.get(), &AccountServices::portDescriptionsReplaced, this,
            [this] { m_system->initNetworkPortDescriptions(); });
    connect(m_account.get(), &AccountServices::countryDatabaseReplaced, this,
            [this] { AllStats::reloadCountries(*m_collector); });
}

void Application::prepareCounting()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    m_profiles->refreshProfileFromDatabase();
    if (Settings::instance().value(SettingsKeys::ProfilesResetOnSleep)) {
        m_profiles->activateDefaultProfile();
    }
    m_collector = new Collector(this);
    m_collector->setUiModeSource([this] { return m_window && m_window->isOpen(); });
    m_collector->start();
    m_collector->startCollector();
    SystemPlaces places;
    places.dataDirectory = getDataDir();
    auto system = CommonSystem::createPlatformSpecificSystem(m_database.get(), this, places);
    m_platformSystem = system.get();
    m_system = std::make_unique<CachedSystem>(std::move(system));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/tallyvane-logo.ico")));
    AllStats::addTo(*m_collector, m_system.get(), m_liveRates, this);
    m_counting = new CountingSwitch(*m_database, *m_collector, *m_system, this);
    connect(m_counting, &CountingSwitch::pausedChanged, this, &Application::refreshTrayIcon);
}

void Application::prepareTray()
{
    Theme::apply();
    m_tray = new TrayIcon(KeysToday(*m_database), this);
    connect(m_tray, &TrayIcon::openRequested, this, &Application::openMainWindow);
    connect(m_tray, &TrayIcon::pauseRequested, m_counting, &CountingSwitch::pause);
    connect(m_tray, &TrayIcon::resumeRequested, m_counting, &CountingSwitch::resume);
    connect(m_tray, &TrayIcon::quitRequested, this, &Application::exitClient);
    connect(m_tray, &TrayIcon::zurgeRequested, this, &Application::doZurge);
    m_profileWiring = new ProfileWiring(*m_profiles, *m_collector, *m_tray, this);
    if (const PowerMonitor* power = m_platformSystem->powerMonitor()) {
        new SleepWiring({*power, *m_collector, *m_system, *m_profileWiring}, this);
        connect(power, &PowerMonitor::sessionEnding, this, &Application::exitClient);
    }
    Q_EMIT refreshTrayIcon();
    m_tray->show();
    const QString damaged = m_database->keptDamagedFile();
    if (!damaged.isEmpty()) {
        slotNeedTrayIconMessage(tr("Database replaced"),
                                tr("The database was damaged and another one took its place. The "
                                   "damaged file is kept: %1")
                                    .arg(damaged));
    }
}

void Application::slotStartupDelayed()
{
    Log::info("Starting timers and collector..");
    m_account->start();
    connect(&m_maintenanceTimer, &QTimer::timeout, this, &Application::slotPerformMaintenace);
    m_maintenanceTimer.start(MaintenanceMs);
    connect(&m_memoryTimer, &QTimer::timeout, this, &Application::cleanupMemory);
    m_memoryTimer.start(MemoryCleanupMs);
    connect(&m_pruneTimer, &QTimer::timeout, this, &Application::pruneMousePoints);
    m_pruneTimer.start(PruneMs);
    m_mousePointPruning = std::make_unique<MousePointPruning>(*m_database, Settings::instance());
    m_mousePointPruning->start(QDateTime::currentDateTime());
    Settings::instance().setValue(SettingsKeys::ClientVersion, versionString());
    applySettings(false);
    m_collector->start();
    Q_EMIT refreshTrayIcon();
    m_account->zurgeOnStartup();
    m_system->initNetworkPortDescriptions();
    connect(m_milestones, &Milestones::signalNeedTrayIconMessage, this,
            &Application::slotNeedTrayIconMessage);
    m_milestones->refreshSettings(Milestones::All);
    m_account->startUsageStats();
    connect(m_database.get(), &Database::damageFound, this, &Application::clientRestart,
            Qt::QueuedConnection);
    m_database->checkInBackground();
    // Qt ends the process from within its event loop when the display goes away. Registered this
    // late, so that it runs before what was made up to here is destroyed.
    std::atexit(&Application::leaveWithoutDisplay);
}

void Application::applySettings(bool changedByUser)
{
    Settings& settings = Settings::instance();
    if (changedByUser) {
        settings.setValue(SettingsKeys::SettingsLastSaved, QDateTime::currentDateTime());
    }
    m_counting->followSettings();
    Autostart(QCoreApplication::applicationFilePath())
        .follow(settings.value(SettingsKeys::LaunchOnStart));
    Theme::apply();
    Q_EMIT refreshTrayIcon();
    const QNetworkProxy proxy = ProxySettings::from(settings).proxy();
    applyNetworkProxy(proxy);
    m_proxyAddress->follow(proxy);
    m_account->applySettings();
    m_clientApi->changeState();
    m_window->refreshInputState();
}

void Application::singleAppMessage(const QString& message)
{
    if (message == QLatin1String("open_window") && m_started) {
        Log::info("Received message from another instance to open our main window!");
        openMainWindow();
    }
    if (message == QLatin1String("zurge") && m_started) {
        Log::info("Received message from another instance to zurge. Zurging!");
        doZurge();
    }
    if (message == QLatin1String("exit_client")) {
        Log::info("Received message from another instance to exit. Exiting cleanly!");
        exitClient();
    }
    if (message == QLatin1String("ping")) {
        Log::debug("Received ping from watchdog.");
    }
}

void Application::doZurge()
{
    if (!m_localStats->isLoggedIn()) {
        Log::info("No account is signed in, nothing is sent.");
    }
    m_localStats->doZurge(ZurgeStart::Manual);
}

void Application::slotPerformMaintenace()
{
    m_account->performMaintenance();
}

void Application::exitClient()
{
    if (m_exiting) {
        return;
    }
    m_exiting = true;
    resetProfile("we're exiting the client");
    Log::info("Shutting down client, we've had enough!");
    closeProcesses();
    QCoreApplication::quit();
    QCoreApplication::quit();
    endProcess();
}

void Application::endProcess()
{
    Q_EMIT aboutToEnd();
    Log::flush();
    std::_Exit(EXIT_SUCCESS);
}

void Application::resetProfile(const char* reason)
{
    if (m_profileWiring) {
        m_profileWiring->resetToDefault(reason);
    }
}

void Application::closeProcesses()
{
    if (m_closed) {
        return;
    }
    stopCollecting();
    m_setup.reset();
    m_window.reset();
    saveState();
    if (m_tray) {
        m_tray->hide();
    }
}

void Application::stopCollecting()
{
    m_closed = true;
    m_clientApi.reset();
    m_accountWiring.reset();
    if (m_setup) {
        m_setup->stop();
    }
    if (m_account) {
        m_account->stop();
    }
    if (m_profileWiring) {
        m_profileWiring->deletion().cancelAndWait(); // What was counted meanwhile is written below.
    }
    if (m_milestones) {
        m_milestones->stop();
    }
    if (m_collector) {
        m_collector->stopCollector();
        m_collector->finish();
    }
}

void Application::saveState()
{
    if (m_system) {
        m_system->stop();
    }
    if (m_started) {
        m_localStats->saveSettings();
    }
    Settings::instance().close();
    m_database.reset();
}

void Application::leaveWithoutDisplay()
{
    if (!m_instance || m_instance->m_closed) {
        return;
    }
    m_instance->m_exiting = true;
    m_instance->resetProfile("we're exiting the client");
    Log::info("Shutting down client, the display is gone!");
    m_instance->stopCollecting();
    m_instance->saveState();
    m_instance->endProcess();
}

void Application::restartClient()
{
    // Before the new process looks for a running client.
    Q_EMIT aboutToEnd();
    if (!QProcess::startDetached(QCoreApplication::applicationFilePath(), {})) {
        Log::error("Unable to start the client anew");
    }
    endProcess();
}

void Application::clientRestart()
{
    closeProcesses();
    restartClient();
}

void Application::startCollector()
{
    m_counting->release();
}

void Application::pauseCollector()
{
    m_counting->hold();
}

QString Application::getDataDir()
{
    if (m_portable) {
        return PortableMode::directory();
    }
    if (m_userDataDirectory.isEmpty()) {
        m_userDataDirectory = SnapStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    }
    return m_userDataDirectory;
}

void Application::togglePortableMode()
{
    closeProcesses();
    PortableMode::toggle(SnapStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    restartClient();
}

void Application::cleanDatabase()
{
    m_database->cleanDatabase();
    m_platformSystem->reloadExclusions();
}

void Application::cleanDatabaseUser()
{
    m_database->cleanDatabaseUser();
    m_platformSystem->reloadExclusions();
}

void Application::pruneMousePoints()
{
    m_mousePointPruning->pruneMousePoints(QDateTime::currentDateTime());
}

void Application::cleanupMemory()
{
    m_window->cleanup();
}

void Application::openMainWindow()
{
    m_window->open();
}

void Application::prepareWindow()
{
    m_milestones = new Milestones(this);
    m_window = std::make_unique<MainWindowHost>(
        m_database->getDatabaseFileName(), *m_system, *m_counting,
        ViewWiring::Parts{*m_platformSystem, *m_profiles, m_profileWiring->deletion(),
                          *m_milestones, m_liveRates,
                          [this] { return AllStats::canFileCountries(*m_collector); }});
    connect(m_window.get(), &MainWindowHost::closed, m_tray, &TrayIcon::explainClosedWindow);
    connect(m_window.get(), &MainWindowHost::keyboardCountingRequested, this, [this] {
        m_counting->storeKeyboardOn();
        applySettingsSlot();
    });
    m_setup = std::make_unique<SetupHost>(SetupHost::Parts{*m_account, *m_localStats, *m_counting,
                                                           *m_platformSystem, *m_milestones,
                                                           *m_database, getDataDir()});
    connect(m_setup.get(), &SetupHost::settingsChanged, this, &Application::applySettingsSlot);
    m_accountWiring = std::make_unique<AccountWiring>(
        AccountWiring::Parts{*m_account, *m_localStats, *m_setup, *m_tray, *m_window});
}

void Application::updateTrayIcon()
{
    if (!m_tray) {
        return;
    }
    m_tray->refreshSettings();
    m_tray->setCounting(m_counting->isPaused() ? TrayIcon::Counting::Paused
                                               : TrayIcon::Counting::Running);
}

void Application::slotNeedTrayIconMessage(const QString& title, const QString& text)
{
    m_tray->showMessage(title, text);
}

void Application::onKeyDown()
{
    m_tray->noteActivity();
}

void Application::onMouseButtonDown()
{
    m_tray->noteActivity();
}
