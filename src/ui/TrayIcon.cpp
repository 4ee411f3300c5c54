// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TrayIcon.h"

#include "base/Format.h"
#include "storage/Settings.h"
#include "ui/Icons.h"
#include "ui/Theme.h"

#include <QActionGroup>
#include <QApplication>
#include <QEvent>
#include <QMenu>
#include <QMessageBox>

#include <array>

namespace {

constexpr int BlinkMs = 150;
constexpr int BlinkPeriodMs = 500;   ///< From the start of a blink to the start of the next one.
constexpr int ToolTipDelayMs = 6000; ///< What was typed is stored up to five seconds later.

QString symbolOf(TrayIcon::Shape shape)
{
    switch (shape) {
    case TrayIcon::Shape::Activity:
        return QStringLiteral("tray-activity");
    case TrayIcon::Shape::Paused:
        return QStringLiteral("tray-paused");
    case TrayIcon::Shape::Offline:
        return QStringLiteral("tray-offline");
    case TrayIcon::Shape::Counting:
        break;
    }
    return QStringLiteral("tray-counting");
}

/// Whether the light variant is wanted: as the user says, or where the desktop is dark.
bool wantsLight(const QString& colour)
{
    if (colour == QLatin1String("light") || colour == QLatin1String("dark")) {
        return colour == QLatin1String("light");
    }
    return Theme::isDark(QApplication::palette());
}

/// The colour-blind safe set of Okabe and Ito (https://jfly.uni-koeln.de/color/) without its black,
/// by the profile's id.
QColor profileColour(int id)
{
    static constexpr std::array<QRgb, 7> colours{0xffe69f00, 0xff56b4e9, 0xff009e73, 0xfff0e442,
                                                 0xff0072b2, 0xffd55e00, 0xffcc79a7};
    return QColor(colours.at(static_cast<size_t>(id - 1) % colours.size()));
}

} // namespace

TrayIcon::TrayIcon(KeysToday keysToday, QObject* parent)
    : QObject(parent)
    , m_keysToday(std::move(keysToday))
    , m_menu(std::make_unique<QMenu>())
    , m_icon(this)
{
    buildMenu();
    m_icon.setObjectName(QStringLiteral("trayIcon"));
    m_icon.setContextMenu(m_menu.get());
    m_icon.installEventFilter(this);
    qApp->installEventFilter(this);
    connect(&m_icon, &QSystemTrayIcon::activated, this, &TrayIcon::onActivated);

    m_blinkEnd.setSingleShot(true);
    m_blinkEnd.setInterval(BlinkMs);
    connect(&m_blinkEnd, &QTimer::timeout, this, &TrayIcon::showRestingShape);
    m_toolTipRefresh.setSingleShot(true);
    m_toolTipRefresh.setInterval(ToolTipDelayMs);
    m_toolTipRefresh.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_toolTipRefresh, &QTimer::timeout, this, &TrayIcon::refreshToolTip);
    m_midnight.setSingleShot(true);
    m_midnight.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_midnight, &QTimer::timeout, this, &TrayIcon::refreshToolTip);
    m_secondClick.setSingleShot(true);
    connect(&m_secondClick, &QTimer::timeout, this, &TrayIcon::openRequested);
    refreshSettings();
    refreshToolTip();
}

TrayIcon::~TrayIcon() = default;

QAction* TrayIcon::addEntry(const QString& name, const QString& icon, const QString& text)
{
    QAction* action = m_menu->addAction(Icons::symbol(icon), text);
    action->setObjectName(name);
    return action;
}

void TrayIcon::buildMenu()
{
    m_menu->setObjectName(QStringLiteral("trayMenu"));
    m_menu->setToolTipsVisible(true);
    QAction* open = addEntry(QStringLiteral("open"), QStringLiteral("open"), tr("Open Tallyvane"));
    m_menu->setDefaultAction(open);
    connect(open, &QAction::triggered, this, &TrayIcon::openRequested);
    m_countingAction =
        addEntry(QStringLiteral("counting"), QStringLiteral("pause"), tr("Pause counting"));
    connect(m_countingAction, &QAction::triggered, this, &TrayIcon::toggleCounting);
    m_zurgeAction = addEntry(QStringLiteral("zurge"), QStringLiteral("zurge"), tr("Zurge"));
    connect(m_zurgeAction, &QAction::triggered, this, &TrayIcon::zurgeRequested);
    connect(m_menu.get(), &QMenu::aboutToShow, this, [this] {
        Q_EMIT zurgeFactsNeeded();
        showZurge();
    });
    m_profileMenu = m_menu->addMenu(tr("Profile"));
    m_profileMenu->setObjectName(QStringLiteral("profiles"));
    m_profileMenu->menuAction()->setVisible(false);
    m_profiles = new QActionGroup(m_profileMenu);
    m_menu->addSeparator();
    connect(addEntry(QStringLiteral("setUp"), QStringLiteral("setup"), tr("Set up again…")),
            &QAction::triggered, this, &TrayIcon::setUpRequested);
    connect(addEntry(QStringLiteral("quit"), QStringLiteral("quit"), tr("Quit")),
            &QAction::triggered, this, &TrayIcon::quitRequested);
    showZurge();
}

void TrayIcon::setZurge(const ZurgeFacts& facts)
{
    if (facts != m_zurge) {
        m_zurge = facts;
        showZurge();
    }
}

void TrayIcon::showZurge()
{
    const ZurgeStatus status(m_zurge, QDateTime::currentDateTime());
    const QString reason = status.reason();
    // Many trays show no tool tips, so the reason stands in the entry.
    m_zurgeAction->setText(reason.isEmpty() ? tr("Zurge") : tr("Zurge: %1").arg(reason));
    m_zurgeAction->setToolTip(status.hint());
    m_zurgeAction->setEnabled(status.canBegin());
}

void TrayIcon::zurge()
{
    Q_EMIT zurgeFactsNeeded();
    const ZurgeStatus status(m_zurge, QDateTime::currentDateTime());
    if (status.canBegin()) {
        Q_EMIT zurgeRequested();
    } else {
        showMessage(tr("Nothing was sent"), status.hint());
    }
}

void TrayIcon::setProfiles(const QList<Profile>& profiles, int activeId)
{
    m_profileMenu->clear(); // Which deletes the actions.
    m_activeProfile = {activeId, QString()};
    addProfile({ProfileManager::DefaultProfileId, tr("General")});
    for (const Profile& profile : profiles) {
        addProfile(profile);
        if (profile.id == activeId) {
            m_activeProfile = profile;
        }
    }
    m_profileMenu->menuAction()->setVisible(!profiles.isEmpty());
    refreshSettings();
    refreshToolTip();
}

void TrayIcon::addProfile(const Profile& profile)
{
    QString text = profile.name;
    // An ampersand would mark a shortcut.
    QAction* action = m_profileMenu->addAction(text.replace(u'&', QStringLiteral("&&")));
    m_profiles->addAction(action);
    action->setCheckable(true);
    action->setChecked(profile.id == m_activeProfile.id);
    connect(action, &QAction::triggered, this,
            [this, profile] { Q_EMIT profileRequested(profile.id, profile.name); });
}

void TrayIcon::show()
{
    m_icon.show();
}

void TrayIcon::hide()
{
    m_icon.hide();
    m_blinkEnd.stop();
    m_toolTipRefresh.stop();
    m_midnight.stop();
    m_secondClick.stop();
}

void TrayIcon::toggleCounting()
{
    if (m_counting == Counting::Paused) {
        Q_EMIT resumeRequested();
    } else {
        Q_EMIT pauseRequested();
    }
}

void TrayIcon::setCounting(Counting counting)
{
    m_counting = counting;
    const bool paused = counting == Counting::Paused;
    m_countingAction->setText(paused ? tr("Resume counting") : tr("Pause counting"));
    m_countingAction->setIcon(
        Icons::symbol(paused ? QStringLiteral("resume") : QStringLiteral("pause")));
    showRestingShape();
    refreshToolTip();
}

void TrayIcon::setConnection(Connection connection)
{
    if (connection != m_connection) {
        m_connection = connection;
        showRestingShape();
        refreshToolTip();
    }
}

void TrayIcon::refreshSettings()
{
    const Settings& settings = Settings::instance();
    m_blinks = settings.value(SettingsKeys::TrayiconBlinkOnActivity);
    const bool light = wantsLight(settings.value(SettingsKeys::LogoColor));
    if (m_icons.isEmpty() || light != m_isLight || badge() != m_badge) {
        m_isLight = light;
        m_badge = badge();
        drawIcons();
    }
    showRestingShape();
}

void TrayIcon::drawIcons()
{
    const QColor ink = m_isLight ? QColor(Qt::white) : QColor(QRgb(0xff1d2127));
    // A faint rim keeps the icon legible where the panel is not as the desktop is.
    QColor rim = m_isLight ? QColor(Qt::black) : QColor(Qt::white);
    constexpr float rimOpacity = 0.4F;
    rim.setAlphaF(rimOpacity);
    for (const Shape shape : {Shape::Counting, Shape::Activity, Shape::Paused, Shape::Offline}) {
        const QIcon icon = Icons::outlined(symbolOf(shape), ink, rim);
        m_icons.insert(shape, m_badge.isValid() ? Icons::badged(icon, m_badge, ink) : icon);
    }
    m_icon.setIcon(m_icons.value(m_shape));
}

/// The mark of the active profile; an invalid colour where none is wanted.
QColor TrayIcon::badge() const
{
    const bool wanted = m_activeProfile.id != ProfileManager::DefaultProfileId &&
                        Settings::instance().value(SettingsKeys::ProfilesChangeIconColor);
    return wanted ? profileColour(m_activeProfile.id) : QColor();
}

TrayIcon::Shape TrayIcon::shape() const
{
    return m_shape;
}

QString TrayIcon::toolTip() const
{
    return m_icon.toolTip();
}

QIcon TrayIcon::icon() const
{
    return m_icon.icon();
}

void TrayIcon::noteActivity()
{
    if (m_counting == Counting::Paused) {
        return;
    }
    if (!m_toolTipRefresh.isActive()) {
        m_toolTipRefresh.start();
    }
    const bool justBlinked = m_lastBlink.isValid() && !m_lastBlink.hasExpired(BlinkPeriodMs);
    if (m_blinks && !justBlinked) {
        m_lastBlink.start();
        setShape(Shape::Activity);
        m_blinkEnd.start();
    }
}

void TrayIcon::showRestingShape()
{
    m_blinkEnd.stop();
    setShape(m_counting == Counting::Paused        ? Shape::Paused
             : m_connection == Connection::Offline ? Shape::Offline
                                                   : Shape::Counting);
}

void TrayIcon::setShape(Shape shape)
{
    if (shape != m_shape) {
        m_shape = shape;
        m_icon.setIcon(m_icons.value(shape));
    }
}

void TrayIcon::refreshToolTip()
{
    const QString keys = tr("Keys today: %1").arg(Format::count(m_keysToday()));
    QString text = m_counting == Counting::Paused ? tr("%1, counting is paused").arg(keys) : keys;
    if (!m_activeProfile.name.isEmpty()) {
        text += u'\n' + tr("Profile: %1").arg(m_activeProfile.name);
    }
    if (m_connection == Connection::Offline) {
        text += u'\n' + tr("Working offline: nothing is sent");
    }
    if (text != m_icon.toolTip()) {
        m_icon.setToolTip(text);
    }
    scheduleMidnight();
}

void TrayIcon::scheduleMidnight()
{
    const QDateTime now = QDateTime::currentDateTime();
    const QDateTime midnight = now.date().addDays(1).startOfDay();
    m_midnight.start(std::chrono::milliseconds(now.msecsTo(midnight)) + std::chrono::seconds(1));
}

void TrayIcon::showMessage(const QString& title, const QString& text)
{
    const bool wanted = !Settings::instance().value(SettingsKeys::PauzeNotifications);
    if (wanted && m_icon.isVisible() && QSystemTrayIcon::supportsMessages()) {
        m_icon.showMessage(title, text, m_icons.value(Shape::Counting));
    }
}

void TrayIcon::explainClosedWindow()
{
    Settings& settings = Settings::instance();
    if (settings.value(SettingsKeys::MainwindowClosingExplained)) {
        return;
    }
    settings.setValue(SettingsKeys::MainwindowClosingExplained, true);
    const QString title = tr("Tallyvane is still running");
    if (m_icon.isVisible() && QSystemTrayIcon::isSystemTrayAvailable()) {
        showMessage(title,
                    tr("It goes on counting. To open it or to quit, use its icon in the tray."));
        return;
    }
    auto* box = new QMessageBox(
        QMessageBox::Information, title,
        tr("It goes on counting without a window. This desktop has no tray, so to open it again, "
           "start Tallyvane once more."),
        QMessageBox::Ok);
    box->setObjectName(QStringLiteral("closingExplained"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void TrayIcon::onActivated(QSystemTrayIcon::ActivationReason reason)
{
    if (reason != QSystemTrayIcon::Trigger && reason != QSystemTrayIcon::DoubleClick) {
        return;
    }
    const bool zurges =
        m_zurge.isSignedIn && Settings::instance().value(SettingsKeys::TrayDoubleclickZurge);
    // Trays that are told of clicks over D-Bus know single ones only.
    const bool isDouble = reason == QSystemTrayIcon::DoubleClick || m_secondClick.isActive();
    if (!zurges) {
        Q_EMIT openRequested();
    } else if (isDouble) {
        m_secondClick.stop();
        zurge();
    } else {
        m_secondClick.start(QApplication::doubleClickInterval());
    }
}

bool TrayIcon::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &m_icon && event->type() == QEvent::ToolTip) {
        refreshToolTip();
    } else if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) {
        refreshSettings();
    }
    return QObject::eventFilter(watched, event);
}
