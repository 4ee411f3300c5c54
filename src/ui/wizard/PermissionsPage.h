// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/CaptureState.h"
#include "ui/InputState.h"
#include "ui/wizard/WizardPage.h"

#include <QTimer>

#include <optional>

class Notice;

/// What the program may count and what not, each with the command that allows it. Asks for a new
/// look every other second while it is seen. Thread: main.
class PermissionsPage : public WizardPage
{
    Q_OBJECT

public:
    explicit PermissionsPage(QWidget* parent = nullptr);

    /// `capture` is nothing where the user does not want traffic counted.
    void setPermissions(InputState input, const std::optional<CaptureState>& capture);

Q_SIGNALS:
    void checkRequested();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    Notice* m_input;
    Notice* m_network;
    QTimer m_check;
};
