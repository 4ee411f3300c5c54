// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QSslConfiguration>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <QVariant>

#include <chrono>
#include <memory>
#include <optional>

class PostBody;
class QAuthenticator;
class QHttpMultiPart;
class QNetworkAccessManager;
class QNetworkProxy;
class QNetworkReply;
class QNetworkRequest;
class QSslError;

/// One request to the account service: a form or an upload goes out, and exactly one of `response`
/// and `errorOccurred` tells the outcome, unless the object goes before. Knows nothing of request
/// types, tokens or result codes. Thread: main.
///
/// Both signals come from the event loop, never from within `request` or `uploadFile`; a slot
/// connected to them may delete the object.
///
/// A request goes out once. It is not sent again when the connection is lost (see `PostBody`), and
/// no redirect is followed: it would carry the account's password hash to another address, or
/// become a GET without it. Only a proxy that asks for credentials gets it a second time.
class tHTTP : public QObject // NOLINT(readability-identifier-naming)
{
    Q_OBJECT

public:
    /// A reply beyond this many bytes, counted as they arrive and unpacked, is given up with an
    /// error.
    static constexpr qint64 LargestReply = qint64{32} * 1024 * 1024;

    /// For so long no byte may come or go before the request is given up with an error.
    static constexpr std::chrono::seconds RequestStallLimit{60};
    static constexpr std::chrono::seconds UploadStallLimit{120}; ///< The service unpacks the file.

    explicit tHTTP(const QString& url, QObject* parent = nullptr);
    ~tHTTP() override;

    /// Adds a field, sent after the fixed ones, in the order of the names.
    void addPostVar(const QString& name, const QString& value);

    /// Replaces the limits above for this object.
    void setStallLimit(std::chrono::milliseconds limit);

    /// Posts `text` as a form. While a request is under way, another is dropped (logged).
    void request(const QString& text);

    /// Posts `text` and the file as multipart form data. A file that cannot be read ends in
    /// `errorOccurred`.
    void uploadFile(const QString& text, const QString& filePath);

Q_SIGNALS:
    void response(const QMap<QString, QVariant>& reply);
    void errorOccurred(const QString& text); ///< For the user to read.
    void uploadProgress(qint64 sent, qint64 total);

private Q_SLOTS:
    void replyFinished(QNetworkReply* reply);
    void sslErrors(QNetworkReply* reply, const QList<QSslError>& errors);
    void proxyAuthenticationRequired(const QNetworkProxy& proxy, QAuthenticator* authenticator);
    void progress(qint64 sent, qint64 total);
    void checkSSLCertificate(QNetworkReply* reply);

private:
    void setup();
    void checkForProxy();
    bool mayBegin(const char* logLine);
    QNetworkRequest begin();
    QByteArray form(const QString& text, const QString& identity) const;
    std::unique_ptr<QHttpMultiPart> multipart(const QString& text, const QString& filePath);
    void follow(QNetworkReply* reply, std::chrono::milliseconds stallLimit);
    void receive(QNetworkReply* reply);
    void giveUp(QNetworkReply* reply, const QString& reason);
    QString failureOf(const QNetworkReply& reply) const;
    void reportNetworkError(const QNetworkReply& reply, const QString& reason);
    void readBody(const QByteArray& body);
    void readJson(const QString& text);
    void failSoon(const QString& text);

    QUrl m_url;
    bool m_setupDone = false;
    bool m_busy = false;
    bool m_sslTrouble = false; ///< Dormant: nothing sets it, see `sslErrors`.
    bool m_proxyAuthOffered = false;
    QString m_proxyUser; ///< Offered when the proxy asks; empty: nothing is.
    QString m_proxyPassword;
    QNetworkAccessManager* m_manager = nullptr; ///< Null before `setup`.
    QSslConfiguration m_tls;
    QMap<QString, QString> m_postVars;

    std::optional<std::chrono::milliseconds> m_stallLimit;
    QTimer m_stall;            ///< Runs while a request is under way.
    QPointer<PostBody> m_body; ///< Of the request under way; the reply owns it.
    QByteArray m_received;
    QString m_gaveUp; ///< Why this end gave the request up; empty: it did not.
};
