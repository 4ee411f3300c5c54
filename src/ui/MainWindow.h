// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/InputState.h"
#include "ui/ProfileFilter.h"
#include "ui/ViewContext.h"

#include <QDate>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class MessageBanners;
class QLabel;
class QPushButton;
class QStackedWidget;
class QueryWorker;
class RangeControl;
class SettingsDialog;
class SideBar;
class View;
struct WindowMessage;

/// The main window: the views behind a side bar, and above them one bar with the view's title, the
/// days and the profile that all views follow, and the pause. A view is made when it is first
/// shown. The window holds everything that looking costs (the worker with its connections, the
/// charts), so that destroying it gives all of that back. Thread: main.
class MainWindow : public QWidget
{
    Q_OBJECT

public:
    /// Reads its figures from `databaseFile`, through a worker of its own, which it puts into
    /// `context`.
    MainWindow(const QString& databaseFile, ViewContext context, QWidget* parent = nullptr);
    ~MainWindow() override;

    void setInputState(InputState state);
    void setProfiles(const QList<ProfileFilter::Entry>& profiles);

    /// Shows these above the views, oldest first.
    void setMessages(const QList<WindowMessage>& messages);

    void showView(int index);

    /// Opens the settings, or brings them to the front. They close with the window.
    void showSettings();

Q_SIGNALS:
    /// The window was closed by the user; the program lives on in the tray.
    void closed();
    void pauseRequested();
    void resumeRequested();

    /// The user wants keyboard statistics on, which are switched off in the settings.
    void keyboardCountingRequested();

    /// The views show the counts of this profile from now on; none means of all.
    void profileFilterChanged(std::optional<int> profileId);

    /// The user wants to see a message no more, or to follow its link.
    void messageDismissed(qint64 id);
    void linkRequested(const QUrl& url);

    /// A view was made: whoever fulfils its wishes connects to it now.
    void viewMade(View* view);
    void settingsOpened(SettingsDialog* dialog); ///< Likewise.

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// One entry of the side bar.
    struct Page
    {
        QString title;
        std::function<View*()> make;
        View* view = nullptr; ///< Null until it was first shown.
    };

    void addPages();
    void addPage(const QString& name, const QString& icon, const QString& title,
                 std::function<View*()> make);
    View* current() const; ///< Null until the window was first shown.
    QWidget* buildBar();
    void buildShortcuts();
    void restoreState();
    void saveState() const;
    void applyScope();
    void elideDays();
    void followToday();
    void applyTheme();
    void updateCountingButton();
    void toggleCounting();

    std::unique_ptr<QueryWorker> m_worker; ///< Drops its questions before the views go.
    ViewContext m_context;
    SideBar* m_sideBar;
    QLabel* m_title;
    QLabel* m_days;
    QWidget* m_scopeControls = nullptr; ///< The two below, which some views do without.
    RangeControl* m_range = nullptr;
    ProfileFilter* m_profile = nullptr;
    QPushButton* m_countingButton = nullptr;
    MessageBanners* m_messages;
    QStackedWidget* m_views;
    std::vector<Page> m_pages;
    QPointer<SettingsDialog> m_settings; ///< Null while they are closed.
    InputState m_state = InputState::Reading;
    QTimer m_todayTimer; ///< Notices a new day, also after a sleep.
    QDate m_today;
};
