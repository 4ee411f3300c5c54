// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/Shape.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Shapes {

namespace {

using Test = std::function<bool(const QJsonValue&)>;

Shape where(const Test& test, const QString& otherwise)
{
    return
        [test, otherwise](const QJsonValue& value, const QString& path, ShapeFindings& findings) {
            if (!test(value)) {
                findings.faults << QStringLiteral("%1 is not %2").arg(path, otherwise);
            }
        };
}

bool isDateTime(const QString& text, const QString& format)
{
    return QDateTime::fromString(text, format).toString(format) == text;
}

QJsonValue parsed(const QString& json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json.toUtf8());
    if (document.isArray()) {
        return document.array();
    }
    return document.isObject() ? QJsonValue(document.object()) : QJsonValue();
}

} // namespace

Shape text()
{
    return where([](const QJsonValue& value) { return value.isString(); },
                 QStringLiteral("a text"));
}

Shape nonEmptyText()
{
    return where([](const QJsonValue& value) { return !value.toString().isEmpty(); },
                 QStringLiteral("a text of at least one character"));
}

Shape oneOf(const QStringList& texts)
{
    return where([texts](const QJsonValue& value) { return texts.contains(value.toString()); },
                 QStringLiteral("one of ") + texts.join(QStringLiteral(", ")));
}

Shape matching(const QRegularExpression& pattern)
{
    return where(
        [pattern](const QJsonValue& value) {
            return value.isString() && pattern.match(value.toString()).hasMatch();
        },
        QStringLiteral("a text like ") + pattern.pattern());
}

Shape whole(qint64 least, qint64 most)
{
    return where(
        [least, most](const QJsonValue& value) {
            // Qt keeps a number that was written without fraction and exponent as an integer.
            return value.toVariant().typeId() == QMetaType::LongLong &&
                   value.toInteger() >= least && value.toInteger() <= most;
        },
        QStringLiteral("a whole number from %1 to %2").arg(least).arg(most));
}

Shape notNegative()
{
    return where([](const QJsonValue& value) { return value.isDouble() && value.toDouble() >= 0; },
                 QStringLiteral("a number from 0"));
}

Shape boolean()
{
    return where([](const QJsonValue& value) { return value.isBool(); },
                 QStringLiteral("true or false"));
}

Shape decimalText()
{
    return where(
        [](const QJsonValue& value) {
            static const QRegularExpression digits(QStringLiteral("^(0|[1-9][0-9]*)\\z"));
            bool fits = false;
            value.toString().toLongLong(&fits);
            return fits && digits.match(value.toString()).hasMatch();
        },
        QStringLiteral("a whole number as text"));
}

Shape day()
{
    return where(
        [](const QJsonValue& value) {
            return value.isString() && isDateTime(value.toString(), QStringLiteral("yyyy-MM-dd"));
        },
        QStringLiteral("a day"));
}

Shape dateTime()
{
    return where(
        [](const QJsonValue& value) {
            return value.isString() &&
                   (value.toString().isEmpty() ||
                    isDateTime(value.toString(), QStringLiteral("yyyy-MM-dd HH:mm:ss")));
        },
        QStringLiteral("a date and time"));
}

Shape object(const QList<Field>& fields)
{
    return [fields](const QJsonValue& value, const QString& path, ShapeFindings& findings) {
        if (!value.isObject()) {
            findings.faults << QStringLiteral("%1 is not an object").arg(path);
            return;
        }
        QJsonObject rest = value.toObject();
        for (const Field& field : fields) {
            const QJsonValue content = rest.take(field.name);
            if (!content.isUndefined() || field.presence == Presence::Required) {
                field.shape(content, path + QLatin1Char('.') + field.name, findings);
            }
        }
        for (const QString& name : rest.keys()) {
            findings.unknown << QStringLiteral("%1.%2 is unknown").arg(path, name);
        }
    };
}

Shape listOf(const Shape& entry)
{
    return [entry](const QJsonValue& value, const QString& path, ShapeFindings& findings) {
        if (!value.isArray()) {
            findings.faults << QStringLiteral("%1 is not a list").arg(path);
        }
        for (const QJsonValue& one : value.toArray()) {
            entry(one, path + QStringLiteral("[]"), findings);
        }
    };
}

Shape mapOf(const QRegularExpression& names, const Shape& value)
{
    return [names, value](const QJsonValue& map, const QString& path, ShapeFindings& findings) {
        if (!map.isObject()) {
            findings.faults << QStringLiteral("%1 is not an object").arg(path);
        }
        const QJsonObject entries = map.toObject();
        for (auto it = entries.begin(); it != entries.end(); ++it) {
            if (!names.match(it.key()).hasMatch()) {
                findings.faults << QStringLiteral("%1 has the name %2").arg(path, it.key());
            }
            value(it.value(), path + QLatin1Char('.') + it.key(), findings);
        }
    };
}

Shape jsonText(const Shape& content)
{
    return [content](const QJsonValue& value, const QString& path, ShapeFindings& findings) {
        if (!value.isString()) {
            findings.faults << QStringLiteral("%1 is not a text").arg(path);
        } else if (!value.toString().isEmpty()) {
            content(parsed(value.toString()), path, findings);
        }
    };
}

} // namespace Shapes
