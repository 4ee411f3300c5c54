// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AccountWiring.h"

#include "account/LocalStats.h"
#include "account/Zurge.h"
#include "app/AccountServices.h"
#include "app/MainWindowHost.h"
#include "app/SetupHost.h"
#include "base/Log.h"
#include "storage/Settings.h"
#include "ui/MainWindow.h"
#include "ui/TrayIcon.h"
#include "ui/account/AccountView.h"

#include <QDesktopServices>
#include <QMessageBox>

#include <algorithm>

namespace {

constexpr int ViewMs = 2'000;

} // namespace

AccountWiring::AccountWiring(const Parts& parts, QObject* parent)
    : QObject(parent)
    , m_parts(parts)
{
    m_viewTimer.setInterval(ViewMs);
    connect(&m_viewTimer, &QTimer::timeout, this, &AccountWiring::refreshView);
    if (const ZurgeInFlight* sent = m_parts.localStats.account().ownInFlight()) {
        m_zurges.append({.time = sent->time,
                         .outcome = ZurgeRecord::Outcome::Unanswered,
                         .keys = sent->totals.keys,
                         .clicks = sent->totals.clicks});
    }
    followLocalStats();
    followServices();
    followTray();
    connect(&m_parts.window, &MainWindowHost::windowMade, this, &AccountWiring::followWindow);
    refresh();
}

void AccountWiring::followLocalStats()
{
    const LocalStats* stats = &m_parts.localStats;
    connect(stats, &LocalStats::signalNeedZurgeButtonUpdated, this,
            &AccountWiring::slotNeedZurgeButtonUpdated);
    connect(stats, &LocalStats::signalZurgeFinishedSuccessfully, this,
            &AccountWiring::slotZurgeFinishedSuccessfully);
    connect(stats, &LocalStats::signalZurgeRecorded, this, &AccountWiring::takeRecord);
    connect(stats, &LocalStats::signalNeedMessageBox, this, &AccountWiring::showMessageBox);
    connect(stats, &LocalStats::signalNeedTrayIconMessage, &m_parts.tray, &TrayIcon::showMessage);
}

void AccountWiring::followServices()
{
    connect(&m_parts.services, &AccountServices::changed, this, &AccountWiring::refresh);
    connect(&m_parts.services, &AccountServices::accountReplaced, this, [this] {
        m_zurges.clear();
        refresh();
    });
    const OnlineBackups* backups = &m_parts.services.backups();
    connect(backups, &OnlineBackups::changed, this, &AccountWiring::refreshView);
    connect(backups, &OnlineBackups::failed, this, [this](const QString& text) {
        m_parts.tray.showMessage(tr("The database was not backed up"), text);
    });
}

void AccountWiring::followTray()
{
    TrayIcon* tray = &m_parts.tray;
    connect(tray, &TrayIcon::zurgeFactsNeeded, this,
            [this, tray] { tray->setZurge(zurgeFacts()); });
    connect(tray, &TrayIcon::setUpRequested, this,
            [this] { m_parts.setup.open(SetupWizard::Start::Welcome); });
}

void AccountWiring::followWindow(MainWindow* window)
{
    WindowMessages* messages = &m_parts.services.messages();
    const auto show = [messages, window] { window->setMessages(messages->messages()); };
    connect(messages, &WindowMessages::changed, window, show);
    show();
    connect(window, &MainWindow::messageDismissed, messages, &WindowMessages::dismiss);
    connect(window, &MainWindow::linkRequested, this, [](const QUrl& url) {
        if (!QDesktopServices::openUrl(url)) {
            Log::warn("No browser could be opened for {}", url.toString());
        }
    });
    connect(window, &MainWindow::viewMade, this, [this](View* view) {
        if (auto* account = qobject_cast<AccountView*>(view)) {
            followView(account);
        }
    });
}

void AccountWiring::followView(AccountView* view)
{
    m_view = view;
    connect(view, &QObject::destroyed, &m_viewTimer, &QTimer::stop);
    m_viewTimer.start();
    SetupHost* setup = &m_parts.setup;
    connect(view, &AccountView::linkRequested, setup,
            [setup] { setup->open(SetupWizard::Start::Account); });
    connect(view, &AccountView::restoreRequested, setup,
            [setup] { setup->open(SetupWizard::Start::Restore); });
    connect(view, &AccountView::zurgeRequested, this,
            [this] { m_parts.localStats.doZurge(ZurgeStart::MainWindow); });
    OnlineBackups* backups = &m_parts.services.backups();
    connect(view, &AccountView::backupRequested, backups, &OnlineBackups::start);
    connect(view, &AccountView::backupCancelled, backups, &OnlineBackups::cancel);
    connect(view, &AccountView::signOutRequested, &m_parts.services, &AccountServices::signOut);
    view->setState(state());
    m_parts.services.refreshAccountInfo();
}

void AccountWiring::slotNeedZurgeButtonUpdated()
{
    refresh();
}

void AccountWiring::slotZurgeFinishedSuccessfully()
{
    refresh();
}

ZurgeFacts AccountWiring::zurgeFacts() const
{
    const LocalStats& stats = m_parts.localStats;
    return {.isSignedIn = stats.isLoggedIn(),
            .isInProgress = stats.isZurging(),
            .isOffline = Settings::instance().value(SettingsKeys::WorkOffline),
            .hasCounts = ZurgeAmounts::wholeUnits(stats.unzurged()) != UnzurgedCounts(),
            .begun = stats.account().lastZurge,
            .automaticSuspendedUntil = stats.automaticSuspendedUntil()};
}

AccountState AccountWiring::state() const
{
    const LocalStats& stats = m_parts.localStats;
    return {.userName = stats.identity().userName,
            .email = stats.identity().email,
            .computer = stats.identity().computer,
            .totals = OnlineFigures::storedTotals(),
            .ranks = OnlineFigures::storedRanks(),
            .unzurged = stats.unzurged(),
            .zurge = zurgeFacts(),
            .lastZurge = stats.account().lastZurge,
            .zurges = m_zurges,
            .backup = m_parts.services.backups().state()};
}

void AccountWiring::refresh()
{
    const ZurgeFacts facts = zurgeFacts();
    m_parts.tray.setZurge(facts);
    m_parts.tray.setConnection(facts.isSignedIn && facts.isOffline ? TrayIcon::Connection::Offline
                                                                   : TrayIcon::Connection::Online);
    refreshView();
}

void AccountWiring::refreshView()
{
    if (m_view) {
        m_view->setState(state());
    }
}

void AccountWiring::takeRecord(const ZurgeRecord& record)
{
    const auto known = std::ranges::find(m_zurges, record.time, &ZurgeRecord::time);
    if (known == m_zurges.end()) {
        m_zurges.prepend(record);
        m_zurges.resize(std::min(m_zurges.size(), MostZurges));
    } else {
        // Who began it, the first record has told.
        known->outcome = record.outcome;
        known->message = record.message;
    }
    refreshView();
}

/// One box at most: what is said last replaces what was not read yet.
void AccountWiring::showMessageBox(const QString& title, const QString& text)
{
    if (!m_box) {
        m_box = new QMessageBox(QMessageBox::Information, {}, {}, QMessageBox::Ok);
        m_box->setObjectName(QStringLiteral("accountMessage"));
        m_box->setAttribute(Qt::WA_DeleteOnClose);
        m_box->setTextFormat(Qt::PlainText);
    }
    m_box->setWindowTitle(title);
    m_box->setText(text);
    m_box->show();
    m_box->raise();
}
