// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ReceivedRequest.h"

#include <QJsonDocument>
#include <QList>
#include <QRegularExpression>

#include <algorithm>

namespace {

struct FormField
{
    QString name;
    QByteArray value;
};

struct Part
{
    QMap<QByteArray, QByteArray> headers; ///< By name in lower case.
    QByteArray content;
};

bool isPercentEncoded(const QByteArray& text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^([A-Za-z0-9._~-]|%[0-9A-Fa-f]{2})*\\z"));
    return pattern.match(QString::fromLatin1(text)).hasMatch();
}

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

QList<FormField> formFields(const QByteArray& body, QStringList& violations)
{
    QList<FormField> fields;
    for (const QByteArray& pair : body.split('&')) {
        const qsizetype equals = pair.indexOf('=');
        const QByteArray name = pair.left(equals);
        const QByteArray value = equals < 0 ? QByteArray() : pair.mid(equals + 1);
        if (equals < 0 || !isPercentEncoded(name) || !isPercentEncoded(value)) {
            violations << QStringLiteral("the field %1 is not percent-encoded")
                              .arg(QString::fromLatin1(name));
        }
        fields.append({QString::fromUtf8(QByteArray::fromPercentEncoding(name)),
                       QByteArray::fromPercentEncoding(value)});
    }
    return fields;
}

/// `client_version`, `p`, perhaps `ci`, then the further ones by name.
bool isInOrder(const QList<FormField>& fields)
{
    const auto rank = [](const QString& name) {
        static const QStringList first{QStringLiteral("client_version"), QStringLiteral("p"),
                                       QStringLiteral("ci")};
        const auto place = first.indexOf(name);
        return place < 0 ? first.size() : place;
    };
    return std::is_sorted(
        fields.begin(), fields.end(), [&rank](const FormField& left, const FormField& right) {
            const auto leftRank = rank(left.name);
            const auto rightRank = rank(right.name);
            return leftRank != rightRank ? leftRank < rightRank : left.name < right.name;
        });
}

void setText(ReceivedRequest& request, const QByteArray& base64)
{
    request.text = fromBase64(base64, QStringLiteral("p"), request.violations);
    request.envelope = jsonObject(request.text, QStringLiteral("p"), request.violations);
}

void decodeForm(ReceivedRequest& request, const QByteArray& body)
{
    const QList<FormField> fields = formFields(body, request.violations);
    QMap<QString, QByteArray> byName;
    for (const FormField& field : fields) {
        if (byName.contains(field.name)) {
            request.violations << QStringLiteral("the field %1 came twice").arg(field.name);
        }
        byName.insert(field.name, field.value);
    }
    if (!isInOrder(fields)) {
        request.violations << QStringLiteral("the fields are not in order");
    }
    request.clientVersion = QString::fromUtf8(byName.take(QStringLiteral("client_version")));
    setText(request, byName.take(QStringLiteral("p")));
    if (byName.contains(QStringLiteral("ci"))) {
        const QString field = QStringLiteral("ci");
        request.account = jsonObject(fromBase64(byName.take(field), field, request.violations),
                                     field, request.violations);
    }
    for (auto it = byName.cbegin(); it != byName.cend(); ++it) {
        request.further.insert(it.key(), QString::fromUtf8(it.value()));
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
    setText(request, parts->at(0).content);
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
