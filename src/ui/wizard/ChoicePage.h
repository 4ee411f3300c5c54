// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/wizard/WizardPage.h"

class QLabel;

/// A question with two answers of equal weight. Thread: main.
class ChoicePage : public WizardPage
{
    Q_OBJECT

public:
    struct Answer
    {
        QString name; ///< Of the button.
        QString icon;
        QString text;
    };

    /// `quiet` is the answer that changes nothing; Enter gives it.
    ChoicePage(const QString& name, const QString& title, const Answer& active, const Answer& quiet,
               QWidget* parent = nullptr);

    void setQuestion(const QString& text);
    void setAnswers(const QString& active, const QString& quiet);

    /// A smaller button below the answers, for what is rarely wanted.
    QPushButton* addAside(const QString& name, const QString& icon, const QString& text);

    /// What stands below the answers.
    void setRemark(const QString& text);

    QString nextText() const override;
    void takeFocus() override;

Q_SIGNALS:
    void activeChosen();
    void quietChosen();

private:
    QLabel* m_question;
    QPushButton* m_active;
    QPushButton* m_quiet;
    QLabel* m_remark;
};
