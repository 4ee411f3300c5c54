// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "profiles/ProfileManager.h"
#include "ui/account/ZurgeStatus.h"

#include <QElapsedTimer>
#include <QHash>
#include <QIcon>
#include <QObject>
#include <QSystemTrayIcon>
#include <QTimer>

#include <functional>
#include <memory>

class QAction;
class QActionGroup;
class QMenu;

/// The icon in the system tray: shows by its shape whether keys are counted, blinks when they are,
/// and carries the menu. Nothing here runs while nothing happens, but for one wake-up at midnight.
/// Thread: main.
class TrayIcon : public QObject
{
    Q_OBJECT

public:
    enum class Counting
    {
        Running,
        Paused,
    };

    enum class Connection
    {
        Online,
        Offline, ///< An account is linked, but nothing is sent to it.
    };

    /// What the icon shows at a moment, told apart by its shape.
    enum class Shape
    {
        Counting,
        Activity,
        Paused,
        Offline,
    };

    /// Tells how many keys were counted today. Asked at most every few seconds, while keys arrive.
    using KeysToday = std::function<qint64()>;

    explicit TrayIcon(KeysToday keysToday, QObject* parent = nullptr);
    ~TrayIcon() override;

    void show();
    void hide();

    void setCounting(Counting counting);
    void setConnection(Connection connection);

    /// What decides whether the entry that begins a zurge can be used.
    void setZurge(const ZurgeFacts& facts);

    /// Takes over `trayicon_blink_on_activity`, `logo_color`, `profiles_change_icon_color` and the
    /// present palette.
    void refreshSettings();

    Shape shape() const;
    QString toolTip() const;
    QIcon icon() const;

public Q_SLOTS:
    /// A key or button was used: blinks, unless a blink is under way, just over or not wanted.
    void noteActivity();

    /// Shows a message beside the tray, unless there is no tray or the user wants no messages.
    void showMessage(const QString& title, const QString& text);

    /// Says, the first time only, that the program goes on counting without its window.
    void explainClosedWindow();

    /// Offers these profiles beside the default one, and shows which one counts are filed under.
    void setProfiles(const QList<Profile>& profiles, int activeId);

Q_SIGNALS:
    void openRequested();
    void pauseRequested();
    void resumeRequested();
    void quitRequested();
    void zurgeFactsNeeded(); ///< `setZurge` is to bring them up to date before this returns.
    void zurgeRequested();
    void setUpRequested(); ///< The user wants to go through the first steps again.
    void profileRequested(int id, const QString& name);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildMenu();
    QAction* addEntry(const QString& name, const QString& icon, const QString& text);
    void showZurge();
    void zurge();
    void addProfile(const Profile& profile);
    void drawIcons();
    QColor badge() const;
    void toggleCounting();
    void showRestingShape();
    void setShape(Shape shape);
    void refreshToolTip();
    void scheduleMidnight();
    void onActivated(QSystemTrayIcon::ActivationReason reason);

    KeysToday m_keysToday;
    std::unique_ptr<QMenu> m_menu;
    QSystemTrayIcon m_icon;
    QAction* m_countingAction = nullptr; ///< Owned by the menu.
    QAction* m_zurgeAction = nullptr;    ///< Owned by the menu.
    QMenu* m_profileMenu = nullptr;      ///< Owned by the menu.
    QActionGroup* m_profiles = nullptr;  ///< Owned by the profile menu.
    Profile m_activeProfile;             ///< The default one has no name.
    QTimer m_blinkEnd;
    QTimer m_toolTipRefresh;
    QTimer m_midnight;
    QTimer m_secondClick; ///< Runs while a click may become a double one.
    QElapsedTimer m_lastBlink;
    Counting m_counting = Counting::Running;
    Connection m_connection = Connection::Online;
    ZurgeFacts m_zurge;
    Shape m_shape = Shape::Counting;
    QHash<Shape, QIcon> m_icons; ///< In the variant in force.
    bool m_isLight = false;
    QColor m_badge; ///< As drawn; invalid for none.
    bool m_blinks = true;
};
