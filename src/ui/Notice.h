// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFrame>

class CopyField;
class QLabel;
class QPushButton;

/// Says what a view cannot show, why, and what to do about it: a symbol, a title, a sentence, and,
/// where they help, a command to copy or a button. Thread: main.
class Notice : public QFrame
{
    Q_OBJECT

public:
    struct Content
    {
        QString icon;
        QString title;
        QString text;
        QString command; ///< Empty where none helps.
        QString button;  ///< Empty where there is nothing to press.
    };

    explicit Notice(QWidget* parent = nullptr);

    void setContent(const Content& content);

Q_SIGNALS:
    void buttonPressed();

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void applyTheme();

    QLabel* m_icon;
    QLabel* m_title;
    QLabel* m_text;
    CopyField* m_command;
    QPushButton* m_button;
    QString m_iconName;
};
