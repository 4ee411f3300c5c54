// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

/// The file that came with an upload. Plain value.
struct ReceivedFile
{
    QString name;
    QByteArray contentType;
    QByteArray content;
};

/// What a client sent to the API address. Plain value.
struct ReceivedRequest
{
    QString clientVersion;
    QJsonObject envelope;             ///< Empty where the text is no JSON object.
    QJsonObject account;              ///< The field "ci"; empty where it is absent.
    std::optional<ReceivedFile> file; ///< Only of an upload.

    /// How the request departs from docs/account-protocol.md, one sentence each.
    QStringList violations;

    QString type() const { return envelope.value(QLatin1String("action")).toString(); }

    QJsonObject data() const { return envelope.value(QLatin1String("data")).toObject(); }

    QString clientToken() const { return envelope.value(QLatin1String("client_token")).toString(); }
};

/// Reads a form or an upload. Takes any bytes; what could be read is there beside the violations.
ReceivedRequest decodeRequest(const QByteArray& contentType, const QByteArray& body);
