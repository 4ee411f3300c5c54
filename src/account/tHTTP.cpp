// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/tHTTP.h"

#include "account/JsonReader.h"
#include "account/JsonWriter.h"
#include "account/LocalStats.h"
#include "account/PostBody.h"
#include "account/ProxySettings.h"
#include "account/Redacted.h"
#include "account/TlsTrust.h"
#include "base/Log.h"
#include "base/Version.h"
#include "storage/Settings.h"

#include <QAuthenticator>
#include <QFile>
#include <QFileInfo>
#include <QHttpMultiPart>
#include <QMetaEnum>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslError>

#include <algorithm>
#include <utility>

namespace {

/// Who asks, as the form's field "ci"; empty where no account is signed in.
QString identityJson()
{
    const LocalStats* stats = LocalStats::instance();
    if (stats == nullptr || !stats->isLoggedIn()) {
        return {};
    }
    const AccountIdentity& identity = stats->identity();
    JsonWriter writer;
    writer.stringify(QVariantMap{
        {QStringLiteral("user_id"), QString::number(identity.userId)},
        {QStringLiteral("computer_id"), QString::number(identity.computerId)},
        {QStringLiteral("password_hash"), identity.passwordHash},
    });
    return writer.result();
}

QByteArray packed(const QString& text)
{
    return text.toUtf8().toBase64().toPercentEncoding();
}

QByteArray percentEncoded(const QString& text)
{
    return text.toUtf8().toPercentEncoding();
}

/// A file's name as a part's header carries it: a quote or a line end in it would end the value
/// (RFC 7578, section 2).
QByteArray headerText(const QString& text)
{
    QString escaped = text;
    escaped.replace(u'"', QLatin1String("%22"))
        .replace(u'\r', QLatin1String("%0D"))
        .replace(u'\n', QLatin1String("%0A"));
    return escaped.toUtf8();
}

QHttpPart fieldPart(const QByteArray& name, const QByteArray& value)
{
    QHttpPart part;
    part.setRawHeader("Content-Disposition", "form-data; name=\"" + name + '"');
    part.setBody(value);
    return part;
}

QHttpPart filePart(const QString& text, const QFileInfo& file)
{
    const bool isPicture = text.contains(QLatin1String("keyboard_image")) ||
                           text.contains(QLatin1String("mouse_image"));
    QHttpPart part;
    part.setRawHeader("Content-Disposition",
                      "form-data; name=\"file\"; filename=\"" + headerText(file.fileName()) + '"');
    part.setRawHeader("Content-Type", isPicture ? "image/" + headerText(file.suffix())
                                                : QByteArrayLiteral("application/octet-stream"));
    return part;
}

} // namespace

tHTTP::tHTTP(const QString& url, QObject* parent)
    : QObject(parent)
    , m_url(url)
{
    m_stall.setSingleShot(true);
}

tHTTP::~tHTTP() = default;

void tHTTP::addPostVar(const QString& name, const QString& value)
{
    m_postVars.insert(name, value);
}

void tHTTP::setStallLimit(std::chrono::milliseconds limit)
{
    m_stallLimit = limit;
}

void tHTTP::request(const QString& text)
{
    if (!mayBegin("SSL errors, something fishy is going on!")) {
        return;
    }
    QNetworkRequest request = begin();
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QByteArrayLiteral("application/x-www-form-urlencoded"));
    const QString identity = identityJson();
    Log::info("Performing HTTP request to: {}", m_url.toDisplayString());
    if (Log::isEnabled(Log::Level::Debug)) {
        const QByteArray shown = form(redacted(text), redacted(identity));
        Log::debug("With data: {}", QString::fromLatin1(shown));
    }
    auto body = std::make_unique<PostBody>(form(text, identity));
    m_body = body.get();
    QNetworkReply* reply = m_manager->post(request, body.get());
    body.release()->setParent(reply);
    follow(reply, RequestStallLimit);
}

void tHTTP::uploadFile(const QString& text, const QString& filePath)
{
    if (!mayBegin("Something fishy is going on, not trying to connect to the website! "
                  "Experiencing SSL errors")) {
        return;
    }
    std::unique_ptr<QHttpMultiPart> parts = multipart(text, filePath);
    if (parts == nullptr) {
        failSoon(tr("The file %1 cannot be read.").arg(filePath));
        return;
    }
    QNetworkRequest request = begin();
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      "multipart/form-data; boundary=" + parts->boundary());
    Log::info("Performing HTTP request to: {}", m_url.toDisplayString());
    QNetworkReply* reply = m_manager->post(request, parts.get());
    parts.release()->setParent(reply);
    follow(reply, UploadStallLimit);
}

bool tHTTP::mayBegin(const char* logLine)
{
    if (m_busy) {
        Log::warn("Already busy doing a HTTP request, putting a new request on hold.");
        return false;
    }
    m_busy = true;
    if (m_sslTrouble) {
        Log::warn("{}", logLine);
        failSoon(tr("SSL errors, something fishy is going on!"));
        return false;
    }
    return true;
}

/// The part of a request that forms and uploads share.
QNetworkRequest tHTTP::begin()
{
    if (!m_setupDone) {
        setup();
    }
    QNetworkRequest request(m_url);
    checkForProxy();
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QStringLiteral("Tallyvane Client %1").arg(versionString()));
    request.setSslConfiguration(m_tls);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    // Many streams on one connection serve a single request in nothing.
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, QVariant(false));
    // What is unpacked is counted here; Qt's check of the ratio is not needed.
    request.setDecompressedSafetyCheckThreshold(-1);
    return request;
}

void tHTTP::setup()
{
    m_manager = new QNetworkAccessManager(this);
    connect(m_manager, &QNetworkAccessManager::proxyAuthenticationRequired, this,
            &tHTTP::proxyAuthenticationRequired);
    // Queued, so that whoever hears of the outcome may delete this object and with it the manager.
    connect(m_manager, &QNetworkAccessManager::finished, this, &tHTTP::replyFinished,
            Qt::QueuedConnection);
    connect(m_manager, &QNetworkAccessManager::sslErrors, this, &tHTTP::sslErrors);
    connect(m_manager, &QNetworkAccessManager::encrypted, this, &tHTTP::checkSSLCertificate);
    m_tls = TlsTrust::configuration();
    m_setupDone = true;
}

void tHTTP::checkForProxy()
{
    m_proxyAuthOffered = false;
    // What an earlier request left, an idle connection or credentials, may be out of date.
    m_manager->clearAccessCache();
    const ProxySettings settings = ProxySettings::from(Settings::instance());
    QNetworkProxy proxy = settings.proxy();
    if (proxy.type() == QNetworkProxy::DefaultProxy) {
        proxy = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(m_url)).constFirst();
    }
    m_proxyUser = proxy.user();
    m_proxyPassword = proxy.password();
    if (m_proxyUser.isEmpty() && settings.logIn) {
        m_proxyUser = settings.user;
        m_proxyPassword = settings.password;
    }
    // With credentials in the proxy, Qt would offer them by itself and, refused, ask for more.
    proxy.setUser({});
    proxy.setPassword({});
    m_manager->setProxy(proxy);
}

void tHTTP::proxyAuthenticationRequired(const QNetworkProxy&, QAuthenticator* authenticator)
{
    if (m_proxyAuthOffered) {
        return;
    }
    m_proxyAuthOffered = true;
    if (m_proxyUser.isEmpty()) {
        return;
    }
    authenticator->setUser(m_proxyUser);
    authenticator->setPassword(m_proxyPassword);
    if (m_body != nullptr) {
        m_body->permitRestart();
    }
}

QByteArray tHTTP::form(const QString& text, const QString& identity) const
{
    QByteArray query = "client_version=" + percentEncoded(versionString()) + "&p=" + packed(text);
    if (!identity.isEmpty()) {
        query += "&ci=" + packed(identity);
    }
    for (auto field = m_postVars.begin(); field != m_postVars.end(); ++field) {
        query += '&' + percentEncoded(field.key()) + '=' + percentEncoded(field.value());
    }
    return query;
}

/// Null where the file cannot be read.
std::unique_ptr<QHttpMultiPart> tHTTP::multipart(const QString& text, const QString& filePath)
{
    auto file = std::make_unique<QFile>(filePath);
    const QFileInfo info(filePath);
    if (!info.isFile() || !file->open(QIODevice::ReadOnly)) {
        return nullptr;
    }
    auto parts = std::make_unique<QHttpMultiPart>(QHttpMultiPart::FormDataType);
    parts->append(fieldPart("p", text.toUtf8().toBase64()));
    parts->append(fieldPart("client_version", versionString().toUtf8()));
    m_body = new PostBody(std::move(file), parts.get());
    QHttpPart part = filePart(text, info);
    part.setBodyDevice(m_body);
    parts->append(part);
    return parts;
}

void tHTTP::follow(QNetworkReply* reply, std::chrono::milliseconds stallLimit)
{
    m_received.clear();
    m_gaveUp.clear();
    connect(reply, &QNetworkReply::uploadProgress, this, &tHTTP::progress);
    connect(reply, &QNetworkReply::readyRead, this, [this, reply] { receive(reply); });
    m_stall.callOnTimeout(reply,
                          [this, reply] { giveUp(reply, tr("the service does not answer")); });
    m_stall.start(m_stallLimit.value_or(stallLimit));
}

void tHTTP::progress(qint64 sent, qint64 total)
{
    m_stall.start();
    Q_EMIT uploadProgress(sent, total);
}

void tHTTP::receive(QNetworkReply* reply)
{
    m_stall.start();
    while (m_gaveUp.isEmpty()) {
        const QByteArray bytes = reply->read(LargestReply + 1 - m_received.size());
        if (bytes.isEmpty()) {
            return;
        }
        m_received += bytes;
        if (m_received.size() > LargestReply) {
            giveUp(reply, tr("the answer is larger than %1 MiB").arg(LargestReply >> 20));
        }
    }
}

void tHTTP::giveUp(QNetworkReply* reply, const QString& reason)
{
    m_gaveUp = reason;
    reply->abort();
}

void tHTTP::sslErrors(QNetworkReply* reply, const QList<QSslError>& errors)
{
    for (const QSslError& error : errors) {
        Log::warn("SSL Errors: {}", error.errorString());
    }
    reply->ignoreSslErrors();
    m_sslTrouble = false;
}

void tHTTP::checkSSLCertificate(QNetworkReply*) {}

void tHTTP::replyFinished(QNetworkReply* reply)
{
    reply->deleteLater();
    if (reply->error() == QNetworkReply::NoError) {
        receive(reply);
    }
    m_stall.stop();
    m_busy = false;
    if (m_sslTrouble) {
        Q_EMIT errorOccurred(tr("SSL errors, something fishy is going on!"));
        return;
    }
    if (const QString reason = failureOf(*reply); !reason.isNull()) {
        reportNetworkError(*reply, reason);
        return;
    }
    readBody(std::exchange(m_received, {}));
}

/// Why there is no answer, fit for a user; null where there is one.
QString tHTTP::failureOf(const QNetworkReply& reply) const
{
    if (!m_gaveUp.isEmpty()) {
        return m_gaveUp;
    }
    if (reply.error() == QNetworkReply::ContentReSendError) {
        return tr("no answer came, and the request is not sent twice");
    }
    if (reply.error() != QNetworkReply::NoError) {
        return reply.errorString();
    }
    const QUrl target = reply.attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    return target.isEmpty() ? QString() : tr("it asks to talk to %1").arg(target.toDisplayString());
}

void tHTTP::reportNetworkError(const QNetworkReply& reply, const QString& reason)
{
    QString message = tr("Error while talking to website: %1").arg(reason);
    if (reason.contains(QLatin1String("SSL handshake failed"))) {
        message += tr(". We recommend trying again in a little while.");
    }
    Log::warn("HTTP Error: {}", message);
    const char* code = QMetaEnum::fromType<QNetworkReply::NetworkError>().valueToKey(reply.error());
    Log::warn("HTTP Error code: {}", code);
    Q_EMIT errorOccurred(message);
}

void tHTTP::readBody(const QByteArray& body)
{
    QString text = QString::fromUtf8(body);
    if (text.isEmpty()) {
        Log::warn("Bad reply from server: empty");
        Q_EMIT errorOccurred(tr("Bad reply from server: empty"));
        return;
    }
    const auto isInJson = [](QChar c) { return c == u'{' || c == u':' || c == u'}'; };
    if (std::none_of(text.cbegin(), text.cend(), isInJson)) {
        text = QString::fromUtf8(QByteArray::fromBase64(body));
        Log::debug("Base64 response: {}", redacted(text));
    }
    Log::debug("Text response: {}", redacted(text));
    if (text.isEmpty()) {
        Q_EMIT response({});
        return;
    }
    readJson(text);
}

void tHTTP::readJson(const QString& text)
{
    JsonReader reader;
    if (!reader.parse(text)) {
        Log::warn("Failure in parsing JSON from website: {}", reader.errorString());
        Log::debug("Original response: {}", redacted(text));
        Q_EMIT errorOccurred(tr("Error while talking to website: %1").arg(reader.errorString()));
        return;
    }
    Q_EMIT response(reader.result().toMap());
}

/// Ends a request that was not sent, from the event loop like any other.
void tHTTP::failSoon(const QString& text)
{
    QMetaObject::invokeMethod(
        this,
        [this, text] {
            m_busy = false;
            Q_EMIT errorOccurred(text);
        },
        Qt::QueuedConnection);
}
