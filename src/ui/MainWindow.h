// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/InputState.h"
#include "ui/TodayView.h"

#include <QWidget>

#include <memory>

class QLabel;
class QPushButton;
class QStackedWidget;
class QueryWorker;
class SideBar;

/// The main window: the views behind a side bar, and above them one bar with the title and the
/// actions of the view shown. It holds everything that looking costs (the worker with its
/// connection, the charts), so that destroying it gives all of that back. Thread: main.
class MainWindow : public QWidget
{
    Q_OBJECT

public:
    /// Reads its figures from `databaseFile`, through a connection of its own.
    MainWindow(const QString& databaseFile, ApplicationName applicationName,
               QWidget* parent = nullptr);
    ~MainWindow() override;

    void setInputState(InputState state);

Q_SIGNALS:
    /// The window was closed by the user; the program lives on in the tray.
    void closed();
    void pauseRequested();
    void resumeRequested();

    /// The user wants keyboard statistics on, which are switched off in the settings.
    void keyboardCountingRequested();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QWidget* buildBar();
    void buildShortcuts();
    void restoreState();
    void saveState() const;
    void showView(int index);
    void showDay(const QDate& day);
    void applyTheme();
    void updateCountingButton();
    void toggleCounting();

    std::unique_ptr<QueryWorker> m_worker; ///< Drops its questions before the views go.
    SideBar* m_sideBar;
    QLabel* m_title;
    QLabel* m_subtitle;
    QPushButton* m_countingButton = nullptr;
    QStackedWidget* m_views;
    TodayView* m_today;
    InputState m_state = InputState::Reading;
};
