// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/WindowMessages.h"

#include <QList>
#include <QMap>
#include <QWidget>

class MessageBanner;
class QLabel;
class QVBoxLayout;

/// The messages above the views, the newest first: three at most, and a line that tells how many
/// more there are. Takes no room where there is none. Thread: main.
class MessageBanners : public QWidget
{
    Q_OBJECT

public:
    explicit MessageBanners(QWidget* parent = nullptr);

    /// Oldest first. A banner that is shown already keeps its focus.
    void setMessages(const QList<WindowMessage>& messages);

    /// Lets Tab lead from `previous` through the banners, from top to bottom.
    void orderTabs(QWidget* previous);

Q_SIGNALS:
    void dismissed(qint64 id); ///< The message stays until it is missing from `setMessages`.
    void linkRequested(const QUrl& url);

protected:
    void changeEvent(QEvent* event) override;

private:
    MessageBanner* makeBanner(qint64 id);

    QMap<qint64, MessageBanner*> m_banners; ///< Those shown, by the message's id.
    QVBoxLayout* m_layout;
    QLabel* m_more;
};
