// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

class ClientCommunication;
class WindowMessages;

/// Fetches what the service wants the user to know into the window's messages. Thread: main.
class WebsiteMessageCheck : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive this object.
    WebsiteMessageCheck(ClientCommunication& communication, WindowMessages& messages,
                        QObject* parent = nullptr);

public Q_SLOTS:
    /// Asks the service, and keeps the time of that; does nothing while the client works offline or
    /// no account is signed in.
    void checkForMessagesFromWebsite();

private:
    void takeAnswer(const QString& requestType, int status, const QMap<QString, QVariant>& data,
                    const QString& message);

    ClientCommunication& m_communication;
    WindowMessages& m_messages;
};
