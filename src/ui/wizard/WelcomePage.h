// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/wizard/WizardPage.h"

/// What the program is, and what the steps are for. Thread: main.
class WelcomePage : public WizardPage
{
    Q_OBJECT

public:
    explicit WelcomePage(QWidget* parent = nullptr);

    QString nextText() const override;
    QString backText() const override;
};
