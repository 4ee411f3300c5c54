// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/AccountIdentity.h"
#include "account/MonotonicClock.h"
#include "account/ResultCodes.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

class tHTTP;

/// Speaks the account service's request protocol: wraps each request in the common envelope, signs
/// in with a client token first where that is needed, keeps at most one request on the wire and the
/// others in a queue, and turns result codes into one `requestDone` per request.
/// docs/account-protocol.md tells the formats. Thread: main.
///
///     Idle --request--> SigningIn --token--> Requesting --answer--> the next in the queue, or Idle
///       |                   ^                 ^      |
///       |--token is fresh---|-----------------|      |
///                           |----------600-----------|
///
/// An exchange that fails, on either side of the sign-in, ends the request. One that drags on for
/// more than a minute is abandoned once another request is made; one on which nothing moves is
/// given up by the transport.
class ClientCommunication : public QObject
{
    Q_OBJECT

public:
    using Map = QMap<QString, QVariant>;

    static constexpr qint64 LongestTokenAgeMs = 300'000;
    static constexpr qint64 LongestExchangeMs = 60'000;

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

    explicit ClientCommunication(QObject* parent = nullptr, MonotonicClock clock = monotonicMsecs);
    ~ClientCommunication() override;

    /// The one instance; null before it was created.
    static ClientCommunication* instance();

    void setClientURL(const QString& url);
    void setEmail(const QString& email);
    void setUserID(qint64 userId);
    void setComputerID(qint64 computerId);
    void setPasswordHash(const QString& passwordHash);
    void setIdentity(const AccountIdentity& identity); ///< All of them at once; drops the token.

    /// Sends the request, or queues it behind the one on the wire. False, and a log line, where the
    /// type needs an account and none is signed in, or the client works offline; then no
    /// `requestDone` follows.
    ///
    /// `needAuthentication` counts for the few types that may go out without an account; every
    /// other one is authenticated in any case.
    bool clientRequest(const QString& requestType, const Map& inputData,
                       const QMap<QString, QString>& postData, bool automatic,
                       bool needAuthentication);

    bool initClientAuthorization(const QString& clientUid, const QString& organizationId);
    bool checkClientAuthorization(const QString& clientUid, const QString& organizationId);
    bool doZurge(const ZurgeRequest& zurge);
    bool getPendingMessagesFromWebsite();
    bool resetToken(); ///< Forgets the client token at the service, and then here.
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

    /// `type`: "keyboard_image", "mouse_image" or "database_file"; any other one is sent as
    /// "unknown".
    bool uploadFile(const QString& path, const QString& type);

Q_SIGNALS:
    /// One request is over. `status` is the service's code, 0 where the service was not understood
    /// or not reached, or where the account that the request was for is signed out by now;
    /// `message` is for the user to read.
    void requestDone(const QString& requestType, int status, const QMap<QString, QVariant>& data,
                     const QString& message);

    /// One request is over, and nobody can say how: it had no answer for a minute, or one with a
    /// code that says nothing. No `requestDone` follows.
    void requestDropped(const QString& requestType);

    /// The service says that this computer is archived; `work_offline` is set already.
    void computerArchived();

    void uploadProgress(qint64 sent, qint64 total);

private:
    enum class Stage
    {
        Idle,
        SigningIn,  ///< For the current request, which follows.
        Requesting, ///< The current request is on the wire.
        Ending,     ///< It is not sent, as its requester is about to be told.
    };

    struct Pending
    {
        Request request;
        QString filePath;             ///< Of the file to upload; empty for a form.
        AccountIdentity account = {}; ///< Signed in when it was asked for.
    };

    bool request(const QString& requestType, const Map& inputData = {});
    bool accept(Pending pending);
    QString refusal(const QString& requestType) const;
    void abandonStale();
    void processNextInQueue();
    void startCurrent();
    bool isForEarlierAccount() const;
    bool needsSignIn() const;
    void clientLogin();
    void clientReLogin();
    void sendCurrent();
    void openExchange(Stage stage);
    void closeExchange();

    void checkHTTPResponse(const Map& answer);
    void checkHTTPError(const QString& text);
    void signInAnswered(int status, const Map& data);
    void takeToken(const QString& token);
    void conclude(const RequestResult& result, const Map& data);
    void logOriginalRequest() const;
    void archive(const RequestResult& result, const Map& data);
    void end(int status, const Map& data, const QString& message);
    void endLater(const QString& message);
    void drop();

    MonotonicClock m_clock;
    QString m_clientUrl;
    AccountIdentity m_identity;

    QString m_token; ///< Empty: not signed in.
    qint64 m_tokenTime = 0;
    AccountIdentity m_signingIn; ///< For whom the sign-in on the wire is.
    int m_reLogins = 0;          ///< In a row, without any other answer to a request than 600.

    Stage m_stage = Stage::Idle;
    tHTTP* m_http = nullptr; ///< A child; null while nothing is on the wire.
    qint64 m_exchangeBegun = 0;
    Pending m_current;
    QList<Pending> m_queue;
};
