// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/AccountIdentity.h"

#include <QElapsedTimer>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

#include <optional>

class tHTTP;

/// Speaks the account service's request protocol: wraps each request in the common envelope, signs
/// in with a client token first where that is needed, keeps at most one request on the wire and the
/// others in a queue, and turns result codes into one `requestDone` per request.
/// docs/account-protocol.md tells the formats. Thread: main.
class ClientCommunication : public QObject
{
    Q_OBJECT

public:
    using Map = QMap<QString, QVariant>;

    struct Request
    {
        QString requestType;
        Map inputData;                   ///< The envelope's "data".
        QMap<QString, QString> postData; ///< Further form fields.
        bool automatic = false;          ///< Begun by the client itself, not by the user.
        bool needAuthentication = true;
    };

    /// The amounts of a zurge in the service's units. Plain value.
    struct ZurgeRequest
    {
        QString token; ///< Of the zurge, from the last answer; not the client token.
        quint64 keys = 0;
        quint64 clicks = 0;
        quint64 uptimeSeconds = 0;
        quint64 downloadMiB = 0;
        quint64 uploadMiB = 0;
        quint64 scrolls = 0;
        quint64 distanceInches = 0;
        bool automatic = false;
        QVariantList applications; ///< Left out where empty.
        Map timeSeries;            ///< Left out where empty.
    };

    explicit ClientCommunication(QObject* parent = nullptr);
    ~ClientCommunication() override;

    /// The one instance; null before it was created.
    static ClientCommunication* instance();

    void setClientURL(const QString& url);
    void setEmail(const QString& email);
    void setUserID(qint64 userId);
    void setComputerID(qint64 computerId);
    void setPasswordHash(const QString& passwordHash);
    void setIdentity(const AccountIdentity& identity); ///< All four at once; drops the token.

    /// Sends the request, or queues it behind the one on the wire. False, and a log line, where no
    /// account is signed in and the type needs one; then no `requestDone` follows.
    bool clientRequest(const QString& requestType, const Map& inputData,
                       const QMap<QString, QString>& postData, bool automatic,
                       bool needAuthentication);

    bool initClientAuthorization(const QString& clientUid, const QString& organizationId);
    bool checkClientAuthorization(const QString& clientUid, const QString& organizationId);
    bool doZurge(const ZurgeRequest& zurge);
    bool getPendingMessagesFromWebsite();
    bool resetToken(); ///< Forgets the client token here and at the service.
    void invalidateClientToken();
    bool refreshAccountInfo();
    bool testProxy();
    bool getDatabaseBackupUploadURL();
    bool getDatabaseBackupDownloadURL(const QString& fileName);
    bool logUpdateRequest(const QString& targetVersion);
    bool syncClientProfiles(const QVariantList& profiles);
    bool uploadKeyboardHeatmap(const Map& heatmap);
    bool uploadKeyboardHeatmapApps(const Map& heatmap);
    bool uploadKeyCombinationsHeatmap(const Map& heatmap);
    bool uploadKeyCombinationsHeatmapApps(const Map& heatmap);
    bool uploadButtonsHeatmap(const Map& heatmap);
    bool uploadButtonsHeatmapApps(const Map& heatmap);
    bool uploadApplications(const QVariantList& applications);
    bool uploadApplicationSettings(const Map& clientSettings);
    bool uploadComputerInfo(const Map& computerInfo);
    bool uploadUsageStats(const Map& windowOpenTimes, const QVariantList& events);
    bool uploadFile(const QString& path, const QString& type);

Q_SIGNALS:
    /// One request is over. `status` is the service's code, 0 where the service was not understood
    /// or not reached; `message` is for the user to read.
    void requestDone(const QString& requestType, int status, const QMap<QString, QVariant>& data,
                     const QString& message);

    /// The service says that this computer is archived; `work_offline` is set already.
    void computerArchived();

    void uploadProgress(qint64 sent, qint64 total);
};
