// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ReceivedRequest.h"

#include <QJsonDocument>
#include <QList>
#include <QMap>
#include <QRegularExpression>
#include <QUrlQuery>

namespace {

struct Part
{
    QMap<QByteArray, QByteArray> headers; ///< By name in lower case.
    QByteArray content;
};

QByteArray fromBase64(const QByteArray& text, const QString& field, QStringList& violations)
{
    const auto result =
        QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
    if (!result || text.size() % 4 != 0) {
        violations << QStringLiteral("%1 is not base64 with padding").arg(field);
    }
    return *result;
}

QJsonObject jsonObject(const QByteArray& text, const QString& field, QStringList& violations)
{
    const QJsonDocument document = QJsonDocument::fromJson(text);
    if (!document.isObject()) {
        violations << QStringLiteral("%1 holds no JSON object").arg(field);
    }
    return document.object();
}

void setEnvelope(ReceivedRequest& request, const QByteArray& base64)
{
    const QString field = QStringLiteral("p");
    request.envelope =
        jsonObject(fromBase64(base64, field, request.violations), field, request.violations);
}

void decodeForm(ReceivedRequest& request, const QByteArray& body)
{
    const QUrlQuery fields(QString::fromLatin1(body));
    const auto value = [&fields](const QString& name) {
        return fields.queryItemValue(name, QUrl::FullyDecoded).toUtf8();
    };
    request.clientVersion = QString::fromUtf8(value(QStringLiteral("client_version")));
    setEnvelope(request, value(QStringLiteral("p")));
    const QString account = QStringLiteral("ci");
    if (fields.hasQueryItem(account)) {
        request.account = jsonObject(fromBase64(value(account), account, request.violations),
                                     account, request.violations);
    }
}

std::optional<Part> part(const QByteArray& bytes)
{
    const qsizetype end = bytes.indexOf("\r\n\r\n");
    if (end < 0) {
        return std::nullopt;
    }
    Part part;
    part.content = bytes.mid(end + 4);
    qsizetype from = 0;
    while (from < end) {
        const qsizetype lineEnd = bytes.indexOf("\r\n", from);
        const QByteArray line = bytes.mid(from, lineEnd - from);
        const qsizetype colon = line.indexOf(": ");
        if (colon < 0) {
            return std::nullopt;
        }
        part.headers.insert(line.left(colon).toLower(), line.mid(colon + 2));
        from = lineEnd + 2;
    }
    return part;
}

/// RFC 2046, section 5.1.1, without preamble and epilogue. Nothing where the bytes are no such
/// body.
std::optional<QList<Part>> multipartParts(const QByteArray& body, const QByteArray& boundary)
{
    const QByteArray first = "--" + boundary + "\r\n";
    const QByteArray next = "\r\n--" + boundary;
    if (boundary.isEmpty() || !body.startsWith(first)) {
        return std::nullopt;
    }
    QList<Part> parts;
    qsizetype from = first.size();
    while (true) {
        const qsizetype end = body.indexOf(next, from);
        const auto one = end < 0 ? std::nullopt : part(body.mid(from, end - from));
        if (!one) {
            return std::nullopt;
        }
        parts.append(*one);
        const QByteArray after = body.mid(end + next.size());
        if (after == "--\r\n" || after == "--") {
            return parts;
        }
        if (!after.startsWith("\r\n")) {
            return std::nullopt;
        }
        from = end + next.size() + 2;
    }
}

bool isPlainPart(const Part& part, const QByteArray& name)
{
    return part.headers ==
           QMap<QByteArray, QByteArray>{{"content-disposition", "form-data; name=\"" + name + '"'}};
}

QByteArray expectedContentType(const ReceivedRequest& request)
{
    const QString type = request.data().value(QLatin1String("type_upload")).toString();
    const bool image =
        type == QLatin1String("keyboard_image") || type == QLatin1String("mouse_image");
    return image ? "image/" + request.file->name.section(QLatin1Char('.'), -1).toUtf8()
                 : QByteArrayLiteral("application/octet-stream");
}

void setFile(ReceivedRequest& request, const Part& part)
{
    static const QRegularExpression pattern(
        QStringLiteral("^form-data; name=\"file\"; filename=\"([^\"/]+)\"\\z"));
    const auto match = pattern.match(QString::fromUtf8(part.headers.value("content-disposition")));
    request.file = ReceivedFile{.name = match.captured(1),
                                .contentType = part.headers.value("content-type"),
                                .content = part.content};
    if (!match.hasMatch() || part.headers.size() != 2) {
        request.violations << QStringLiteral("the third part's headers are not those of a file");
    }
    if (request.file->contentType != expectedContentType(request)) {
        request.violations << QStringLiteral("the file has the content type %1")
                                  .arg(QString::fromLatin1(request.file->contentType));
    }
}

void decodeUpload(ReceivedRequest& request, const QByteArray& boundary, const QByteArray& body)
{
    const auto parts = multipartParts(body, boundary);
    if (!parts || parts->size() != 3) {
        request.violations << QStringLiteral("the body does not consist of three parts");
        return;
    }
    if (!isPlainPart(parts->at(0), "p") || !isPlainPart(parts->at(1), "client_version")) {
        request.violations << QStringLiteral("the first two parts' headers are other ones");
    }
    setEnvelope(request, parts->at(0).content);
    request.clientVersion = QString::fromUtf8(parts->at(1).content);
    setFile(request, parts->at(2));
}

void checkEnvelope(ReceivedRequest& request)
{
    const auto text = [&request](QLatin1String name) {
        return request.envelope.value(name).toString();
    };
    if (request.type().isEmpty() || !request.envelope.value(QLatin1String("data")).isObject()) {
        request.violations << QStringLiteral("the envelope has no action or no data");
    }
    if (request.clientVersion.isEmpty() ||
        text(QLatin1String("client_version")) != request.clientVersion) {
        request.violations << QStringLiteral("the client's version is missing or differs");
    }
    if (text(QLatin1String("type_os")) != QLatin1String("linux")) {
        request.violations << QStringLiteral("type_os is not \"linux\"");
    }
    static const QStringList known{QStringLiteral("action"), QStringLiteral("client_token"),
                                   QStringLiteral("data"), QStringLiteral("type_os"),
                                   QStringLiteral("client_version")};
    for (const QString& name : request.envelope.keys()) {
        if (!known.contains(name)) {
            request.violations << QStringLiteral("the envelope has a field %1").arg(name);
        }
    }
}

void checkAccount(ReceivedRequest& request)
{
    if (request.account.isEmpty()) {
        return;
    }
    static const QRegularExpression decimal(QStringLiteral("^[1-9][0-9]*\\z"));
    const auto isDecimal = [&request](QLatin1String name) {
        return decimal.match(request.account.value(name).toString()).hasMatch();
    };
    if (request.account.size() != 3 || !isDecimal(QLatin1String("user_id")) ||
        !isDecimal(QLatin1String("computer_id")) ||
        request.account.value(QLatin1String("password_hash")).toString().isEmpty()) {
        request.violations << QStringLiteral("ci does not hold just the three texts");
    }
}

} // namespace

ReceivedRequest decodeRequest(const QByteArray& contentType, const QByteArray& body)
{
    ReceivedRequest request;
    static const QByteArray multipart = QByteArrayLiteral("multipart/form-data; boundary=");
    if (contentType == "application/x-www-form-urlencoded") {
        decodeForm(request, body);
    } else if (contentType.startsWith(multipart)) {
        decodeUpload(request, contentType.mid(multipart.size()), body);
    } else {
        request.violations
            << QStringLiteral("the content type is \"%1\"").arg(QString::fromLatin1(contentType));
        return request;
    }
    checkEnvelope(request);
    checkAccount(request);
    return request;
}
