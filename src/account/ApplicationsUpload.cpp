// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ApplicationsUpload.h"

#include "account/AnswerFields.h"
#include "account/ClientCommunication.h"
#include "account/RequestTypes.h"
#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/Settings.h"

#include <QSqlError>

QStringList ApplicationsUpload::requestTypes() const
{
    return {RequestTypes::Applications};
}

void ApplicationsUpload::uploadApplications()
{
    if (!isAllowed() || isWaiting(RequestTypes::Applications) ||
        !Settings::instance().value(SettingsKeys::OnlineSendApplications)) {
        return;
    }
    const QVariantList applications = readNew();
    if (!applications.isEmpty()) {
        Log::info("Uploading '{}' new applications..", applications.size());
        send(RequestTypes::Applications,
             [&] { return communication().uploadApplications(applications); });
    }
}

QVariantList ApplicationsUpload::readNew()
{
    const QDate today = QDate::currentDate();
    if (m_offeredOn != today) {
        m_offeredOn = today;
        m_offeredTo = 0;
    }
    DSqlQuery query(&database());
    query.prepare(QStringLiteral(
        "SELECT rowid, path, name, version FROM applications WHERE sent_online = 0 AND path <> '' "
        "AND path NOT IN (SELECT path FROM application_ignore) AND rowid > ? ORDER BY rowid LIMIT "
        "?"));
    query.bindValue(0, m_offeredTo);
    query.bindValue(1, AtOnce);
    query.exec();
    QVariantList applications;
    while (query.next()) {
        m_sentTo = query.value(0).toLongLong();
        applications.append(QVariantMap{
            {QStringLiteral("path"), query.value(1).toString()},
            {QStringLiteral("name"), query.value(2).toString()},
            {QStringLiteral("version"), query.value(3).toString()},
        });
    }
    return applications;
}

void ApplicationsUpload::answered(const UploadAnswer& answer)
{
    if (!answer.isSuccess()) {
        Log::error("Error uploading applications: {}", answer.message);
        return;
    }
    m_offeredTo = m_sentTo;
    const QList<QVariantMap> applications =
        AnswerFields::objects(answer.data.value(QStringLiteral("applications")));
    if (applications.isEmpty()) {
        Log::info("Successfully uploaded applications, but no application IDs returned.");
    } else {
        storeOnlineIds(applications);
    }
}

void ApplicationsUpload::storeOnlineIds(const QList<QVariantMap>& applications) const
{
    QSqlDatabase connection = database().connection();
    const bool began = connection.transaction();
    DSqlQuery update(&database(),
                     QStringLiteral("UPDATE applications SET online_app_id = ?, sent_online = 1 "
                                    "WHERE path = ?"),
                     false);
    for (const QVariantMap& application : applications) {
        const auto id = AnswerFields::wholeNumber(application.value(QStringLiteral("app_id")));
        const QString path =
            AnswerFields::text(application.value(QStringLiteral("canonical_path")));
        if (id.value_or(0) <= 0 || path.isEmpty()) {
            Log::warn("The service told an application without an id or without a path");
            continue;
        }
        Log::info("Received online application id '{}' for app: {}", *id, path);
        update.bindValue(0, *id);
        update.bindValue(1, path);
        update.exec();
    }
    if (began && !connection.commit()) {
        Log::error("Unable to store the ids of applications: {}", connection.lastError().text());
        connection.rollback();
    }
}
