// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/MainWindow.h"

#include "base/Format.h"
#include "storage/Settings.h"
#include "ui/Icons.h"
#include "ui/QueryWorker.h"
#include "ui/SideBar.h"
#include "ui/Theme.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>

namespace {

constexpr QSize FirstSize(1100, 720);
constexpr QSize LeastSize(900, 600);
constexpr int BarHeight = 64;

} // namespace

MainWindow::MainWindow(const QString& databaseFile, ApplicationName applicationName,
                       QWidget* parent)
    : QWidget(parent)
    , m_worker(std::make_unique<QueryWorker>(databaseFile))
    , m_sideBar(new SideBar(this))
    , m_title(new QLabel(this))
    , m_subtitle(new QLabel(this))
    , m_views(new QStackedWidget(this))
    , m_today(new TodayView(*m_worker, std::move(applicationName)))
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(QStringLiteral("Tallyvane"));
    setMinimumSize(LeastSize);
    // Tab moves in the order in which the controls are made.
    m_sideBar->addView(QStringLiteral("viewToday"), QStringLiteral("today"), tr("Today"));

    auto* content = new QVBoxLayout;
    content->setSpacing(0);
    content->addWidget(buildBar());
    content->addWidget(m_views, 1);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_sideBar);
    layout->addLayout(content, 1);

    m_views->addWidget(m_today);
    connect(m_sideBar, &SideBar::chosen, this, &MainWindow::showView);
    connect(m_today, &TodayView::dayChanged, this, &MainWindow::showDay);
    connect(m_today, &TodayView::keyboardCountingRequested, this,
            &MainWindow::keyboardCountingRequested);
    m_sideBar->orderTabs();
    buildShortcuts();
    restoreState();
    showView(0);
    updateCountingButton();
    applyTheme();
}

MainWindow::~MainWindow()
{
    if (isVisible()) {
        saveState(); // The program ends with the window open.
    }
}

QWidget* MainWindow::buildBar()
{
    auto* bar = new QWidget(this);
    bar->setFixedHeight(BarHeight);
    m_title->setObjectName(QStringLiteral("viewTitle"));
    m_subtitle->setObjectName(QStringLiteral("viewSubtitle"));
    m_countingButton = new QPushButton(bar);
    m_countingButton->setObjectName(QStringLiteral("counting"));
    m_countingButton->setMinimumHeight(4 * Theme::Rhythm);
    connect(m_countingButton, &QPushButton::clicked, this, &MainWindow::toggleCounting);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(Theme::Gap, 0, Theme::Gap, 0);
    layout->setSpacing(Theme::Gap);
    layout->addWidget(m_title, 0, Qt::AlignBaseline);
    layout->addWidget(m_subtitle, 0, Qt::AlignBaseline);
    layout->addStretch();
    layout->addWidget(m_countingButton);
    return bar;
}

void MainWindow::buildShortcuts()
{
    const auto bind = [this](const QKeySequence& keys, auto slot) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, slot);
    };
    for (int view = 0; view < m_views->count(); ++view) {
        bind(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + view), [this, view] { showView(view); });
    }
    bind(QKeySequence::Find, [this] { m_today->focusFilter(); });
    bind(Qt::CTRL | Qt::Key_E, [this] { m_today->exportData(); });
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

void MainWindow::showView(int index)
{
    m_views->setCurrentIndex(index);
    m_sideBar->choose(index);
    m_title->setText(m_views->currentWidget()->accessibleName());
}

void MainWindow::showDay(const QDate& day)
{
    m_subtitle->setText(QStringLiteral("%1, %2").arg(
        QLocale(QLocale::English).dayName(day.dayOfWeek()), Format::day(day)));
}

void MainWindow::setInputState(InputState state)
{
    m_state = state;
    m_today->setInputState(state);
    updateCountingButton();
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

void MainWindow::closeEvent(QCloseEvent* event)
{
    saveState();
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
    m_subtitle->setPalette(Theme::mutedPalette(palette()));
}
