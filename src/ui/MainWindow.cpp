// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/MainWindow.h"

#include "storage/Settings.h"
#include "ui/Icons.h"
#include "ui/MessageBanners.h"
#include "ui/QueryWorker.h"
#include "ui/RangeControl.h"
#include "ui/SideBar.h"
#include "ui/Theme.h"
#include "ui/View.h"
#include "ui/account/AccountView.h"
#include "ui/applications/ApplicationsView.h"
#include "ui/keyboard/KeyboardView.h"
#include "ui/mouse/MouseView.h"
#include "ui/network/NetworkView.h"
#include "ui/overview/OverviewView.h"
#include "ui/profiles/ProfilesView.h"
#include "ui/settings/SettingsDialog.h"
#include "ui/uptime/UptimeView.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>

namespace {

constexpr QSize FirstSize(1100, 720);
constexpr QSize LeastSize(900, 600);
constexpr int BarHeight = 64;
constexpr int TodayCheckMs = 10'000;

} // namespace

MainWindow::MainWindow(const QString& databaseFile, ViewContext context, QWidget* parent)
    : QWidget(parent)
    , m_worker(std::make_unique<QueryWorker>(databaseFile))
    , m_context(std::move(context))
    , m_sideBar(new SideBar(this))
    , m_title(new QLabel(this))
    , m_days(new QLabel(this))
    , m_messages(new MessageBanners(this))
    , m_views(new QStackedWidget(this))
    , m_today(QDate::currentDate())
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(QStringLiteral("Tallyvane"));
    setMinimumSize(LeastSize);
    m_views->setObjectName(QStringLiteral("views"));
    m_context.worker = m_worker.get();
    addPages();

    auto* content = new QVBoxLayout;
    content->setSpacing(0);
    content->addWidget(buildBar());
    content->addWidget(m_messages);
    content->addWidget(m_views, 1);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_sideBar);
    layout->addLayout(content, 1);

    connect(m_sideBar, &SideBar::chosen, this, &MainWindow::showView);
    connect(m_sideBar, &SideBar::settingsRequested, this, &MainWindow::showSettings);
    connect(m_range, &RangeControl::rangeChanged, this, &MainWindow::applyScope);
    connect(m_profile, &ProfileFilter::profileChanged, this, &MainWindow::applyScope);
    connect(m_profile, &ProfileFilter::profileChanged, this, &MainWindow::profileFilterChanged);
    connect(m_messages, &MessageBanners::dismissed, this, &MainWindow::messageDismissed);
    connect(m_messages, &MessageBanners::linkRequested, this, &MainWindow::linkRequested);
    connect(&m_todayTimer, &QTimer::timeout, this, &MainWindow::followToday);
    m_todayTimer.start(TodayCheckMs);
    m_sideBar->orderTabs();
    buildShortcuts();
    restoreState();
    updateCountingButton();
    applyTheme();
}

MainWindow::~MainWindow()
{
    if (isVisible()) {
        saveState(); // The program ends with the window open.
    }
}

void MainWindow::addPages()
{
    // Tab moves in the order in which the controls are made.
    addPage(QStringLiteral("viewOverview"), QStringLiteral("overview"), tr("Overview"),
            [this] { return new OverviewView(m_context); });
    addPage(QStringLiteral("viewKeyboard"), QStringLiteral("keyboard"), tr("Keyboard"),
            [this] { return new KeyboardView(m_context); });
    addPage(QStringLiteral("viewMouse"), QStringLiteral("mouse"), tr("Mouse"),
            [this] { return new MouseView(m_context); });
    addPage(QStringLiteral("viewApplications"), QStringLiteral("applications"), tr("Applications"),
            [this] { return new ApplicationsView(m_context); });
    addPage(QStringLiteral("viewNetwork"), QStringLiteral("network"), tr("Network"),
            [this] { return new NetworkView(m_context); });
    addPage(QStringLiteral("viewUptime"), QStringLiteral("uptime"), tr("Uptime"),
            [this] { return new UptimeView(m_context); });
    addPage(QStringLiteral("viewProfiles"), QStringLiteral("profiles"), tr("Profiles"),
            [this] { return new ProfilesView(m_context); });
    addPage(QStringLiteral("viewAccount"), QStringLiteral("account"), tr("Account"),
            [this] { return new AccountView(m_context); });
}

void MainWindow::addPage(const QString& name, const QString& icon, const QString& title,
                         std::function<View*()> make)
{
    m_pages.push_back({.title = title, .make = std::move(make)});
    m_sideBar->addView(name, icon, title);
}

QWidget* MainWindow::buildBar()
{
    auto* bar = new QWidget(this);
    bar->setFixedHeight(BarHeight);
    m_title->setObjectName(QStringLiteral("viewTitle"));
    m_days->setObjectName(QStringLiteral("viewSubtitle"));
    m_days->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_days->installEventFilter(this);
    m_scopeControls = new QWidget(bar);
    m_range = new RangeControl(m_scopeControls);
    m_profile = new ProfileFilter(m_scopeControls);
    auto* scope = new QHBoxLayout(m_scopeControls);
    scope->setContentsMargins(0, 0, 0, 0);
    scope->setSpacing(Theme::Rhythm);
    scope->addWidget(m_range);
    scope->addWidget(m_profile);
    m_countingButton = new QPushButton(bar);
    m_countingButton->setObjectName(QStringLiteral("counting"));
    m_countingButton->setMinimumHeight(4 * Theme::Rhythm);
    connect(m_countingButton, &QPushButton::clicked, this, &MainWindow::toggleCounting);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(Theme::Gap, 0, Theme::Gap, 0);
    layout->setSpacing(Theme::Rhythm);
    layout->addWidget(m_title, 0, Qt::AlignBaseline);
    layout->addWidget(m_days, 1, Qt::AlignBaseline);
    layout->addWidget(m_scopeControls);
    layout->addWidget(m_countingButton);
    return bar;
}

void MainWindow::buildShortcuts()
{
    const auto bind = [this](const QKeySequence& keys, auto slot) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, slot);
    };
    for (int view = 0; view < static_cast<int>(m_pages.size()); ++view) {
        bind(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + view), [this, view] { showView(view); });
    }
    bind(QKeySequence::Find, [this] { current()->focusFilter(); });
    bind(Qt::CTRL | Qt::Key_E, [this] { current()->exportData(); });
    bind(Qt::ALT | Qt::Key_Left, [this] { m_range->goBack(); });
    bind(Qt::CTRL | Qt::Key_Comma, [this] { showSettings(); });
    bind(Qt::Key_Escape, [this] { close(); });
}

void MainWindow::restoreState()
{
    resize(FirstSize);
    const Settings& settings = Settings::instance();
    restoreGeometry(settings.value(SettingsKeys::MainwindowGeometry));
    if (settings.value(SettingsKeys::MainwindowSidebarCollapsed)) {
        m_sideBar->setForm(SideBar::Form::Collapsed);
    }
}

void MainWindow::saveState() const
{
    Settings& settings = Settings::instance();
    settings.setValue(SettingsKeys::MainwindowGeometry, saveGeometry());
    settings.setValue(SettingsKeys::MainwindowSidebarCollapsed,
                      m_sideBar->form() == SideBar::Form::Collapsed);
}

View* MainWindow::current() const
{
    return static_cast<View*>(m_views->currentWidget());
}

void MainWindow::showView(int index)
{
    Page& page = m_pages.at(static_cast<size_t>(index));
    if (!page.view) {
        page.view = page.make();
        page.view->setInputState(m_state);
        m_views->addWidget(page.view);
        connect(page.view, &View::daysRequested, this,
                [this](const QDate& first, const QDate& last) {
                    m_range->select(DateRange::between(first, last));
                });
        connect(page.view, &View::keyboardCountingRequested, this,
                &MainWindow::keyboardCountingRequested);
        Q_EMIT viewMade(page.view);
    }
    m_views->setCurrentWidget(page.view);
    m_sideBar->choose(index);
    m_title->setText(page.title);
    m_scopeControls->setVisible(page.view->followsScope());
    applyScope();
}

void MainWindow::showSettings()
{
    if (!m_settings) {
        m_settings = new SettingsDialog(this);
        connect(m_settings, &SettingsDialog::linkRequested, this, &MainWindow::linkRequested);
        Q_EMIT settingsOpened(m_settings);
    }
    m_settings->show();
    m_settings->raise();
    m_settings->activateWindow();
}

void MainWindow::applyScope()
{
    const DateRange& range = m_range->range();
    const bool isFollowed = current() == nullptr || current()->followsScope();
    m_days->setToolTip(isFollowed ? range.days(m_today) : QString());
    elideDays();
    // The hidden views learn of it when they are shown.
    if (View* view = current()) {
        view->setScope({.first = range.first(m_today),
                        .last = range.last(m_today),
                        .profileId = m_profile->selected()});
    }
}

void MainWindow::elideDays()
{
    m_days->setText(
        m_days->fontMetrics().elidedText(m_days->toolTip(), Qt::ElideRight, m_days->width()));
}

void MainWindow::followToday()
{
    const QDate today = QDate::currentDate();
    if (today != m_today) {
        m_today = today;
        applyScope();
    }
}

void MainWindow::setInputState(InputState state)
{
    m_state = state;
    for (const Page& page : m_pages) {
        if (page.view) {
            page.view->setInputState(state);
        }
    }
    updateCountingButton();
}

void MainWindow::setMessages(const QList<WindowMessage>& messages)
{
    m_messages->setMessages(messages);
    m_messages->orderTabs(m_countingButton);
}

void MainWindow::setProfiles(const QList<ProfileFilter::Entry>& profiles)
{
    m_profile->setProfiles(profiles);
}

void MainWindow::updateCountingButton()
{
    const bool paused = m_state == InputState::Paused;
    m_countingButton->setText(paused ? tr("Resume counting") : tr("Pause counting"));
    m_countingButton->setIcon(
        Icons::symbol(paused ? QStringLiteral("resume") : QStringLiteral("pause")));
    m_countingButton->setVisible(paused || m_state == InputState::Reading);
}

void MainWindow::toggleCounting()
{
    if (m_state == InputState::Paused) {
        Q_EMIT resumeRequested();
    } else {
        Q_EMIT pauseRequested();
    }
}

void MainWindow::showEvent(QShowEvent* event)
{
    if (!current()) {
        showView(0); // Not before: whoever made the window is connected by now.
    }
    QWidget::showEvent(event);
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_days && event->type() == QEvent::Resize) {
        elideDays();
    }
    return QWidget::eventFilter(watched, event);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    saveState();
    if (m_settings) {
        m_settings->close();
    }
    event->accept();
    if (!qGuiApp->isSavingSession()) {
        Q_EMIT closed();
    }
}

void MainWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QWidget::changeEvent(event);
}

void MainWindow::applyTheme()
{
    m_title->setFont(Theme::font(Theme::TextSize::Title));
    m_days->setPalette(Theme::mutedPalette(palette()));
}
