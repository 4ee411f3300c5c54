// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFrame>

struct WindowMessage;
class QLabel;
class QPushButton;
class QToolButton;

/// One message above the views, with a button for its link where it has one and another that takes
/// it away. Its words come from outside and are shown as they stand. Thread: main.
class MessageBanner : public QFrame
{
    Q_OBJECT

public:
    explicit MessageBanner(const WindowMessage& message, QWidget* parent = nullptr);

Q_SIGNALS:
    void linkPressed();
    void dismissPressed();

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void applyTheme();

    QLabel* m_icon;
    QLabel* m_title;
    QLabel* m_text;
    QPushButton* m_link;
    QToolButton* m_dismiss;
};
