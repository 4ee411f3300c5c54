// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/AnswerFields.h"

namespace AnswerFields {

std::optional<qint64> wholeNumber(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
        return value.toLongLong();
    case QMetaType::QString: {
        bool ok = false;
        const qint64 number = value.toString().toLongLong(&ok);
        return ok ? std::optional(number) : std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

QString text(const QVariant& value)
{
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

Map object(const QVariant& value)
{
    return value.typeId() == QMetaType::QVariantMap ? value.toMap() : Map();
}

QList<Map> objects(const QVariant& value)
{
    QList<Map> result;
    if (value.typeId() == QMetaType::QVariantList) {
        for (const QVariant& entry : value.toList()) {
            if (entry.typeId() == QMetaType::QVariantMap) {
                result << entry.toMap();
            }
        }
    }
    return result;
}

QDateTime localTime(const QVariant& value)
{
    constexpr qsizetype dateLength = 10;
    const QString stored = text(value);
    // Apart, since as one local time an hour that a change of the clocks skips would be moved.
    const QDate date = QDate::fromString(stored.left(dateLength), Qt::ISODate);
    const QTime time = QTime::fromString(stored.mid(dateLength), QStringLiteral(" HH:mm:ss"));
    if (!date.isValid() || !time.isValid()) {
        return {};
    }
    return QDateTime(date, time, Qt::UTC).toLocalTime();
}

} // namespace AnswerFields
