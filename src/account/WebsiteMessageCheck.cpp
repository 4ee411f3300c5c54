// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/WebsiteMessageCheck.h"

#include "account/ClientCommunication.h"
#include "account/RequestTypes.h"
#include "account/WindowMessages.h"
#include "base/Log.h"
#include "storage/Settings.h"
#include "storage/SettingsKeys.h"

WebsiteMessageCheck::WebsiteMessageCheck(ClientCommunication& communication,
                                         WindowMessages& messages, QObject* parent)
    : QObject(parent)
    , m_communication(communication)
    , m_messages(messages)
{
    connect(&m_communication, &ClientCommunication::requestDone, this,
            &WebsiteMessageCheck::takeAnswer);
}

void WebsiteMessageCheck::checkForMessagesFromWebsite()
{
    Settings& settings = Settings::instance();
    if (!settings.value(SettingsKeys::WorkOffline) &&
        m_communication.getPendingMessagesFromWebsite()) {
        settings.setValue(SettingsKeys::CheckedForMessagesLast, QDateTime::currentDateTime());
    }
}

void WebsiteMessageCheck::takeAnswer(const QString& requestType, int status,
                                     const QMap<QString, QVariant>& data, const QString& message)
{
    if (requestType != RequestTypes::PendingMessages) {
        return;
    }
    if (ResultCodes::isSuccess(status)) {
        m_messages.takeWebsiteMessages(data.value(QStringLiteral("messages")).toList());
    } else {
        Log::warn("Error getting pending messages: {}", message);
    }
}
