// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFrame>
#include <QUrl>

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
    explicit MessageBanner(QWidget* parent = nullptr);

    void setMessage(const WindowMessage& message);

    /// Lets Tab lead from `previous` to the buttons here; returns the last of them.
    QWidget* orderTabs(QWidget* previous);

Q_SIGNALS:
    void linkPressed(const QUrl& url);
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
    QUrl m_url;
};
