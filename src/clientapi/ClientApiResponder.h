// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHttpServerResponse>
#include <QObject>
#include <QString>

class ClientApiResponses;
class ProfileManager;
class QHttpServerRequest;

/// Answers the HTTP requests of the client API. Who may ask is not asked here. Thread: main.
class ClientApiResponder : public QObject
{
    Q_OBJECT

public:
    /// Both outlive this object.
    ClientApiResponder(const ClientApiResponses& responses, const ProfileManager& profiles,
                       QObject* parent = nullptr);

    QHttpServerResponse responseToGetRequest(const QHttpServerRequest& request);
    QHttpServerResponse responseToPostRequest(const QHttpServerRequest& request);

    /// To any other method: 405.
    static QHttpServerResponse handleOtherMethod();

    /// To a client whose address is not on the list: 401.
    static QHttpServerResponse handleIpNotAllowed();

    /// To a web page that is not ours: 403.
    static QHttpServerResponse handleWebPage();

Q_SIGNALS:
    void apiWantsToZurge();
    void apiWantsToOpenMainWindow();
    void apiWantsToActivateProfile(int profileId, const QString& profileName);

private:
    QHttpServerResponse answerToGet(const QString& path) const;
    QHttpServerResponse handleZurge(const QString& address);
    QHttpServerResponse handleOpenWindow(const QString& address);
    QHttpServerResponse handleProfileActivation(const QByteArray& body, const QString& address);
    static QHttpServerResponse returnFile(const QString& path);
    static void setResponseMetadata(QHttpServerResponse& response);

    const ClientApiResponses& m_responses;
    const ProfileManager& m_profiles;
};
