// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/wizard/WizardPage.h"

/// What the steps have led to, and where the program is found from now on. Thread: main.
class DonePage : public WizardPage
{
    Q_OBJECT

public:
    explicit DonePage(QWidget* parent = nullptr);

    enum class Restore
    {
        None,
        AtNextStart,
    };

    /// `userName` is empty where the user stays local.
    void setOutcome(const QString& userName, Restore restore);

    QString nextText() const override;

private:
    QLabel* m_account;
    QLabel* m_restore;
};
