// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/SettingKey.h"

namespace SettingValue {

std::optional<bool> toBool(const QVariant& value)
{
    const QString text = value.toString().trimmed().toLower();
    if (text == QLatin1String("1") || text == QLatin1String("true")) {
        return true;
    }
    if (text == QLatin1String("0") || text == QLatin1String("false")) {
        return false;
    }
    return std::nullopt;
}

std::optional<qint64> toInteger(const QVariant& value)
{
    bool ok = false;
    const qint64 number = value.toLongLong(&ok);
    return ok ? std::optional(number) : std::nullopt;
}

std::optional<QDateTime> toDateTime(const QVariant& value)
{
    if (value.typeId() == QMetaType::QDateTime) {
        const QDateTime time = value.toDateTime();
        return time.isValid() ? std::optional(time) : std::nullopt;
    }
    if (const std::optional<qint64> seconds = toInteger(value)) {
        return QDateTime::fromSecsSinceEpoch(*seconds);
    }
    QString text = value.toString().trimmed();
    constexpr qsizetype separatorIndex = 10; // Behind "yyyy-MM-dd".
    if (text.size() > separatorIndex && text.at(separatorIndex) == QLatin1Char(' ')) {
        text[separatorIndex] = QLatin1Char('T');
    }
    const QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    return time.isValid() ? std::optional(time) : std::nullopt;
}

} // namespace SettingValue
