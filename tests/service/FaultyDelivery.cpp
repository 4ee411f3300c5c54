// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/FaultyDelivery.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>
#include <QTimer>

namespace {

constexpr qsizetype HugeBody = qsizetype{33} * 1024 * 1024;

/// Applies `change` to every value that is neither list nor object.
template <typename Change>
QJsonValue changeLeaves(const QJsonValue& value, const Change& change)
{
    if (value.isObject()) {
        QJsonObject object = value.toObject();
        for (auto it = object.begin(); it != object.end(); ++it) {
            it.value() = changeLeaves(it.value(), change);
        }
        return object;
    }
    if (value.isArray()) {
        QJsonArray array;
        for (const QJsonValue entry : value.toArray()) {
            array.append(changeLeaves(entry, change));
        }
        return array;
    }
    return change(value);
}

QJsonValue ofAnotherType(const QJsonValue& value)
{
    return value.isString() ? QJsonValue(QJsonArray{value})
                            : QJsonValue(QJsonObject{{QStringLiteral("value"), value}});
}

QJsonValue negated(const QJsonValue& value)
{
    if (!value.isDouble()) {
        return value;
    }
    const QVariant number = value.toVariant();
    return number.typeId() == QMetaType::LongLong ? QJsonValue(-number.toLongLong())
                                                  : QJsonValue(-value.toDouble());
}

template <typename Change>
QByteArray withData(const QByteArray& answer, const Change& change)
{
    QJsonObject object = QJsonDocument::fromJson(answer).object();
    const QLatin1String data("data");
    object.insert(data, change(object.value(data)));
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray changedBody(const QByteArray& body, Fault::Kind kind)
{
    switch (kind) {
    case Fault::Kind::Empty:
        return {};
    case Fault::Kind::Huge:
        return QByteArray(HugeBody, ' ');
    case Fault::Kind::Base64:
        return body.toBase64();
    case Fault::Kind::NotJson:
        return QByteArrayLiteral("<html>Service {temporarily: unavailable}</html>");
    case Fault::Kind::NoData:
        return withData(body, [](const QJsonValue&) { return QJsonObject(); });
    case Fault::Kind::WrongTypes:
        return withData(body,
                        [](const QJsonValue& data) { return changeLeaves(data, ofAnotherType); });
    case Fault::Kind::Negative:
        return withData(body, [](const QJsonValue& data) { return changeLeaves(data, negated); });
    default:
        return body;
    }
}

void deliverNow(const HttpAnswer& answer, Fault::Kind kind, QTcpSocket& socket)
{
    switch (kind) {
    case Fault::Kind::Drop:
        socket.abort();
        return;
    case Fault::Kind::Hang:
        return;
    case Fault::Kind::Truncated:
        socket.write(HttpListener::head(answer, answer.body.size()) +
                     answer.body.left(answer.body.size() / 2));
        socket.disconnectFromHost();
        return;
    default:
        HttpAnswer changed = answer;
        changed.body = changedBody(answer.body, kind);
        HttpListener::send(socket, changed);
    }
}

} // namespace

void deliver(const HttpAnswer& answer, const Fault& fault, QTcpSocket& socket)
{
    if (fault.delayMs == 0) {
        deliverNow(answer, fault.kind, socket);
        return;
    }
    QTimer::singleShot(fault.delayMs, &socket,
                       [answer, kind = fault.kind, &socket] { deliverNow(answer, kind, socket); });
}
