// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/wizard/WizardPage.h"

class BusyLine;
class CopyField;
class QLabel;
class QUrl;

/// Waits for the user to agree in the browser. Thread: main.
class AuthorizationPage : public WizardPage
{
    Q_OBJECT

public:
    explicit AuthorizationPage(QWidget* parent = nullptr);

    void showAsking();
    void showWaiting(const QUrl& page);
    void showFailed(const QString& text);

    bool isUnderWay() const { return m_isUnderWay; }

    QString nextText() const override;
    QString backText() const override;
    void takeFocus() override;

Q_SIGNALS:
    void againRequested();

private:
    void showState(bool isUnderWay, const QString& text, const QString& state);

    bool m_isUnderWay = false;
    QLabel* m_text;
    QLabel* m_state;
    BusyLine* m_line;
    QLabel* m_addressText = nullptr;
    CopyField* m_address;
    QPushButton* m_again;
};
