// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QUrl>
#include <QVariant>

#include <optional>

/// A message that the window shows as a banner. Plain value; its texts are plain text.
struct WindowMessage
{
    qint64 id = 0;
    QString type;
    QString title; ///< May be empty.
    QString text;
    QString buttonText;  ///< Empty: no button.
    QUrl link;           ///< Opened by the button; http and https only, else empty.
    QDateTime createdAt; ///< Local time; invalid where the service does not say.

    friend bool operator==(const WindowMessage&, const WindowMessage&) = default;
};

/// What an entry of the service's list of messages says; nothing where it has no text or no number.
/// Takes any value. Any thread.
std::optional<WindowMessage> parseWebsiteMessage(const QVariant& entry);

/// What the user is told once the service has said that this computer is archived.
WindowMessage archivedComputerMessage(const QUrl& website);

/// What the service wants the user to know, until the user dismisses it. Messages from the service
/// are kept in the table `website_pending_messages`; a dismissed one does not come back. The
/// client's own live as long as this object. Thread: main.
class WindowMessages : public QObject
{
    Q_OBJECT

public:
    explicit WindowMessages(QObject* parent = nullptr);

    void load(); ///< What was kept; the database must be open.

    const QList<WindowMessage>& messages() const { return m_messages; } ///< Oldest first.

    /// Adds a message unless one of its type is there.
    void addUniqueOnTypeWindowMessage(const WindowMessage& message);

    /// Adds what is new in the service's list as it stands in the answer's "messages", and brings
    /// the others up to date. An entry without a text or a number is left out, and logged.
    void takeWebsiteMessages(const QVariantList& messages);

    void dismiss(qint64 id); ///< For good.

Q_SIGNALS:
    void changed();

private:
    bool put(WindowMessage message);
    void sort();

    QList<WindowMessage> m_messages;
    QSet<qint64> m_own;        ///< Numbers of the client's messages.
    QList<qint64> m_dismissed; ///< Numbers of the service's messages, the latest last.
};
