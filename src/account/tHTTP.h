// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QMap>
#include <QObject>
#include <QSslConfiguration>
#include <QString>
#include <QUrl>
#include <QVariant>

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
class tHTTP : public QObject
{
    Q_OBJECT

public:
    /// A reply beyond this many bytes is given up with an error.
    static constexpr qint64 LargestReply = qint64{32} * 1024 * 1024;

    explicit tHTTP(const QString& url, QObject* parent = nullptr);
    ~tHTTP() override;

    /// Adds a field, sent after the fixed ones, in the order of the names.
    void addPostVar(const QString& name, const QString& value);

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

    QUrl m_url;
    bool m_setupDone = false;
    bool m_busy = false;
    bool m_sslTrouble = false;
    bool m_proxyAuthOffered = false;
    QNetworkAccessManager* m_manager = nullptr; ///< Null before `setup`.
    QSslConfiguration m_tls;
    QMap<QString, QString> m_postVars;
};
