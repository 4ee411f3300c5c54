// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ScriptedService.h"
#include "account/ClientCommunication.h"
#include "account/LocalStats.h"
#include "account/Uploads.h"
#include "profiles/ProfileManager.h"
#include "support/TestDatabase.h"
#include "support/Waiting.h"

#include <QJsonArray>

inline const QString Success = QStringLiteral("200");
inline const QString Failure = QStringLiteral("400");

inline QString day(int before = 0)
{
    return QDate::currentDate().addDays(-before).toString(Qt::ISODate);
}

inline QString json(const QJsonValue& value)
{
    const QJsonDocument document =
        value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    return QString::fromUtf8(document.toJson(QJsonDocument::Compact));
}

/// A client with a database, and a service to send to.
struct UploadClient
{
    explicit UploadClient(const AccountIdentity& identity = Someone)
    {
        communication.setClientURL(service.url());
        communication.setIdentity(identity);
        localStats.setIdentity(identity);
        QObject::connect(&communication, &ClientCommunication::requestDone, &communication,
                         [this](const QString& type) { ended << type; });
    }

    bool exec(const char* statement) const
    {
        return database.exec(QString::fromUtf8(statement).replace(QLatin1String("TODAY"), day()));
    }

    /// Calls `upload`, which makes a request for each of the answers and no further one.
    bool makesRequests(const std::function<void(Uploads&)>& upload, const QStringList& answers)
    {
        const QString signIn = QStringLiteral("client_login");
        const QString last = QStringLiteral("testproxy");
        if (signsIn && !answers.isEmpty() && !service.actions().contains(signIn)) {
            service.expect({Success});
        }
        service.expect(answers);
        const qsizetype before = service.envelopes.size();
        ended.clear();
        upload(uploads);
        bool complete = comesTrue([&] { return ended.size() >= answers.size(); });
        // Requests are sent in turn: what was one too many comes before this one.
        communication.testProxy();
        complete = complete && comesTrue([&] { return ended.contains(last); });
        sent = service.envelopes.mid(before);
        sent.removeIf([&](const QJsonObject& envelope) {
            const QString action = envelope[QLatin1String("action")].toString();
            return action == signIn || action == last;
        });
        return complete && sent.size() == answers.size();
    }

    bool makesRequests(void (Uploads::*upload)(), const QStringList& answers)
    {
        return makesRequests([upload](Uploads& all) { (all.*upload)(); }, answers);
    }

    bool makesNoRequest(void (Uploads::*upload)()) { return makesRequests(upload, {}); }

    /// The field of the first request's "data".
    QJsonValue field(const char* name) const
    {
        return sent.value(0)[QLatin1String("data")].toObject()[QLatin1String(name)];
    }

    ScriptedService service;
    TestDatabase database;
    LocalStats localStats;
    ProfileManager profiles;
    ClientCommunication communication;
    QVariantMap facts;
    Uploads uploads{
        {communication, localStats, *database.database()}, profiles, [this] { return facts; }};
    bool signsIn = true;     ///< Before the first request.
    QList<QJsonObject> sent; ///< The envelopes of the latest upload.
    QStringList ended;       ///< The types of its requests, in turn.
};

template <typename T>
void set(const SettingKey<T>& key, const T& value)
{
    Settings::instance().setValue(key, value);
}

template <typename T>
T value(const SettingKey<T>& key)
{
    return Settings::instance().value(key);
}

/// A row, or two, of each kind, counted today at nine.
inline bool fillHeatmaps(const UploadClient& client)
{
    return client.exec("INSERT INTO keypress_frequency VALUES ('TODAY', 9, 65, 3, 0), "
                       "('TODAY', 9, 65, 4, 1)") &&
           client.exec("INSERT INTO keypress_frequency_application VALUES ('TODAY', 9, 65, 7, "
                       "'/usr/bin/editor', 0)") &&
           client.exec("INSERT INTO keycombo_frequency VALUES ('TODAY', 9, 'Ctrl+C', 2, 0)") &&
           client.exec("INSERT INTO keycombo_frequency_application VALUES ('TODAY', 9, 'Ctrl+C', "
                       "2, '/usr/bin/editor', 0)") &&
           client.exec("INSERT INTO mouseclicks_frequency VALUES ('TODAY', 9, 99, 1, 0)") &&
           client.exec("INSERT INTO mouseclicks_frequency_application VALUES ('TODAY', 9, 99, 1, "
                       "'/usr/bin/editor', 0)");
}
