// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/settings/ClientApiState.h"

#include <QFrame>
#include <QString>
#include <QTimer>

class QCheckBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QUrl;
class QVBoxLayout;
class RemarkLine;

/// Switches the client API on and off, says what it does now, and where it listens and whom it
/// answers. Stores what is chosen; a field when it is left, or has rested. Thread: main.
class ClientApiPanel : public QFrame
{
    Q_OBJECT

public:
    explicit ClientApiPanel(QWidget* parent = nullptr);

    /// Shows what is so now, and the settings where they were changed elsewhere.
    void setState(const ClientApiState& state);

Q_SIGNALS:
    void settingsChanged(); ///< They are stored, and to be applied.
    void linkRequested(const QUrl& url);

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// The settings that are shown here.
    struct Chosen
    {
        bool isEnabled = false;
        int httpPort = 0;
        int websocketPort = 0;
        QString addresses;
        bool operator==(const Chosen&) const = default;
    };

    static Chosen chosenInSettings();
    void buildHead(QVBoxLayout& layout);
    void buildPorts(QGridLayout& form);
    void buildAddresses(QGridLayout& form);
    void followFields();
    void fill();
    void store(const Chosen& chosen);
    void storeEnabled();
    void storePorts();
    void storeAddresses();
    void resetAddresses();
    void act();
    void showState();
    void showPortProblem();
    void showAddressRemark();
    void applyTheme();

    Chosen m_chosen; ///< As the settings hold it, as far as is known here.
    ClientApiState m_state;
    QTimer m_rest; ///< Runs while the arrows of a port are pressed.
    QLabel* m_title;
    QCheckBox* m_enabled;
    QLabel* m_explanation;
    RemarkLine* m_status;
    QPushButton* m_action; ///< Opens the page, or tries again.
    QSpinBox* m_httpPort;
    QSpinBox* m_websocketPort;
    RemarkLine* m_portProblem;
    QLineEdit* m_addresses;
    QPushButton* m_reset;
    RemarkLine* m_addressRemark;
};
