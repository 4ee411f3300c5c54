// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/ViewWiring.h"
#include "ui/ViewContext.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

class AbstractSystem;
class CountingSwitch;
class MainWindow;
class SettingsDialog;

/// Makes the main window when it is asked for, keeps what it says of the counting up to date while
/// it is open, and gives back all that it held once it is closed. Thread: main.
class MainWindowHost : public QObject
{
    Q_OBJECT

public:
    /// The window names applications as `system` does, and pauses and resumes `counting`; both
    /// outlive this object, as `parts` do.
    MainWindowHost(const QString& databaseFile, AbstractSystem& system, CountingSwitch& counting,
                   const ViewWiring::Parts& parts, QObject* parent = nullptr);
    ~MainWindowHost() override;

    void open();
    bool isOpen() const;

    /// Tells an open window at once what changed.
    void refreshInputState();

    /// Destroys the window unless it is open.
    void cleanup();

Q_SIGNALS:
    void closed();
    void windowMade(MainWindow* window); ///< Whoever shows something in it connects to it now.
    void settingsOpened(SettingsDialog* dialog); ///< Likewise.
    void keyboardCountingRequested();

private:
    void create();

    QString m_databaseFile;
    ViewContext m_context;
    CountingSwitch& m_counting;
    ViewWiring::Parts m_parts;
    QTimer m_refresh; ///< Runs while the window is open.
    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<ViewWiring> m_wiring; ///< Gone before the window is.
};
