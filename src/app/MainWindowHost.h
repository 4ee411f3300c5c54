// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/InputState.h"
#include "ui/TodayView.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>

class MainWindow;

/// Makes the main window when it is asked for, keeps what it says of the counting up to date while
/// it is open, and gives back all that it held once it is closed. Thread: main.
class MainWindowHost : public QObject
{
    Q_OBJECT

public:
    using InputStateSource = std::function<InputState()>;

    MainWindowHost(const QString& databaseFile, ApplicationName applicationName,
                   InputStateSource inputState, QObject* parent = nullptr);
    ~MainWindowHost() override;

    void open();
    bool isOpen() const;

    /// Tells an open window at once what changed.
    void refreshInputState();

    /// Destroys the window unless it is open.
    void cleanup();

Q_SIGNALS:
    void closed();
    void pauseRequested();
    void resumeRequested();
    void keyboardCountingRequested();

private:
    void create();

    QString m_databaseFile;
    ApplicationName m_applicationName;
    InputStateSource m_inputState;
    QTimer m_refresh; ///< Runs while the window is open.
    std::unique_ptr<MainWindow> m_window;
};
