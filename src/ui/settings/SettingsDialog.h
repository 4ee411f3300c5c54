// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class ClientApiPanel;
class QUrl;
struct ClientApiState;

/// The settings that can be changed in the program. What is changed is stored at once; there is
/// nothing to confirm. Destroys itself when it is closed. Thread: main.
class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SettingsDialog(QWidget* parent = nullptr);
    ~SettingsDialog() override;

    /// Shows what the client API does now, and the settings where they were changed elsewhere.
    void setClientApiState(const ClientApiState& state);

Q_SIGNALS:
    void settingsChanged(); ///< They are stored, and to be applied.
    void linkRequested(const QUrl& url);

private:
    ClientApiPanel* m_clientApi;
};
