// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

/// A message that the window shows as a banner. Plain value.
struct WindowMessage
{
    qint64 id = 0;
    QString type;
    QString title; ///< May be empty.
    QString text;
    QString buttonText; ///< Empty: no button.
    QUrl link;          ///< Opened by the button; http and https only, else empty.
    QDateTime createdAt;
};

/// What the service wants the user to know, until the user dismisses it. Messages from the service
/// are kept in the table `website_pending_messages`; a dismissed one does not come back. Thread:
/// main.
class WindowMessages : public QObject
{
    Q_OBJECT

public:
    explicit WindowMessages(QObject* parent = nullptr);

    void load(); ///< What was kept; the database must be open.

    const QList<WindowMessage>& messages() const; ///< Oldest first.

    /// Adds a message unless one of its type is there.
    void addUniqueOnTypeWindowMessage(const WindowMessage& message);

    /// Takes the service's list as it stands in the answer's "messages". An entry without a text or
    /// a number is left out, and logged.
    void takeWebsiteMessages(const QVariantList& messages);

    void dismiss(qint64 id); ///< For good.

Q_SIGNALS:
    void changed();
};
