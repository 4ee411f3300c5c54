// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>

class ClientCommunication;
class Database;
class LocalStats;

/// What the service answered to one request. Plain value.
struct UploadAnswer
{
    QString requestType;
    int status = 0; ///< See `ClientCommunication::requestDone`.
    QMap<QString, QVariant> data;
    QString message;

    bool isSuccess() const;
};

/// What every upload works with. All of it must outlive the upload.
struct UploadPartners
{
    ClientCommunication& communication;
    const LocalStats& localStats;
    Database& database;
};

/// Something of this computer that the account service is told now and then. While a request waits
/// for its answer, no other one of that type is made. Does and logs nothing as long as no account
/// is signed in, while the client works offline, and while the database is closed or lent. Thread:
/// main.
class Upload
{
public:
    explicit Upload(const UploadPartners& partners);
    virtual ~Upload() = default;

    Upload(const Upload&) = delete;
    Upload& operator=(const Upload&) = delete;

    /// The request types that are this upload's and nobody else's.
    virtual QStringList requestTypes() const = 0;

    /// The outcome of a request of one of these types.
    void requestDone(const UploadAnswer& answer);

    /// A request of one of these types is over, and its outcome is not known.
    void requestDropped(const QString& requestType);

    /// The account is another one: what is still to be answered says nothing about it.
    virtual void forget();

protected:
    virtual void answered(const UploadAnswer& answer) = 0;

    bool isAllowed() const;
    bool isWaiting(const QString& requestType) const;

    /// Makes a request of that type by `request`, which tells whether it was accepted.
    bool send(const QString& requestType, const std::function<bool()>& request);

    ClientCommunication& communication() const { return m_partners.communication; }

    Database& database() const { return m_partners.database; }

private:
    bool isDatabaseAtHand() const;

    UploadPartners m_partners;
    QSet<QString> m_waiting;   ///< Request types.
    QSet<QString> m_forgotten; ///< Those of them that were asked for another account.
};
