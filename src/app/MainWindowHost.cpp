// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MainWindowHost.h"

#include "app/CountingSwitch.h"
#include "system/AbstractSystem.h"
#include "ui/MainWindow.h"
#include "ui/settings/SettingsDialog.h"

namespace {

/// A keyboard that is plugged in shows after this at the latest.
constexpr int RefreshMs = 2'000;

} // namespace

MainWindowHost::MainWindowHost(const QString& databaseFile, AbstractSystem& system,
                               CountingSwitch& counting, const ViewWiring::Parts& parts,
                               QObject* parent)
    : QObject(parent)
    , m_databaseFile(databaseFile)
    , m_counting(counting)
    , m_parts(parts)
{
    m_context.applicationName = [&system](const QString& path) {
        return system.getApplicationNameCached(path);
    };
    m_context.applicationIcon = [&system](const QString& path) {
        return system.getApplicationIcon(path);
    };
    m_refresh.setInterval(RefreshMs);
    connect(&m_refresh, &QTimer::timeout, this, &MainWindowHost::refreshInputState);
    connect(&m_counting, &CountingSwitch::pausedChanged, this, &MainWindowHost::refreshInputState);
}

MainWindowHost::~MainWindowHost() = default;

void MainWindowHost::open()
{
    if (!m_window) {
        create();
    }
    refreshInputState();
    m_refresh.start();
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

bool MainWindowHost::isOpen() const
{
    return m_window && m_window->isVisible();
}

void MainWindowHost::create()
{
    m_window = std::make_unique<MainWindow>(m_databaseFile, m_context);
    m_wiring = std::make_unique<ViewWiring>(*m_window, m_parts);
    connect(m_window.get(), &MainWindow::closed, this, &MainWindowHost::closed);
    connect(m_window.get(), &MainWindow::settingsOpened, this, &MainWindowHost::settingsOpened);
    connect(m_window.get(), &MainWindow::pauseRequested, &m_counting, &CountingSwitch::pause);
    connect(m_window.get(), &MainWindow::resumeRequested, &m_counting, &CountingSwitch::resume);
    connect(m_window.get(), &MainWindow::keyboardCountingRequested, this,
            &MainWindowHost::keyboardCountingRequested);
    Q_EMIT windowMade(m_window.get());
}

void MainWindowHost::refreshInputState()
{
    if (m_window) {
        m_window->setInputState(m_counting.inputState());
    }
}

void MainWindowHost::cleanup()
{
    if (isOpen()) {
        return;
    }
    m_refresh.stop();
    m_wiring.reset();
    m_window.reset();
}
