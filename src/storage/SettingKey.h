// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QString>
#include <QVariant>

#include <optional>
#include <utility>

/// The name of one setting, with its type and the value a read gives where none is stored.
template <typename T>
struct SettingKey
{
    explicit SettingKey(QString key, T fallbackValue = {})
        : fallback(std::move(fallbackValue))
        , m_name(std::move(key))
    {
    }

    const QString& name() const { return m_name; }

    const T fallback;

private:
    const QString m_name;
};

/// Settings come back from SQLite as text, and were written by many versions of the client: these
/// read every form a value was ever stored in. Null where the value is no such thing. Any thread.
namespace SettingValue {

/// From 1, 0, "1", "0", "true", "false".
std::optional<bool> toBool(const QVariant& value);

/// From any whole number, or its decimal text.
std::optional<qint64> toInteger(const QVariant& value);

/// From ISO text ("yyyy-MM-ddTHH:mm:ss", with or without milliseconds and zone), from SQLite's
/// "yyyy-MM-dd HH:mm:ss", from a bare date, and from seconds since the epoch.
std::optional<QDateTime> toDateTime(const QVariant& value);

} // namespace SettingValue

/// The one conversion of a stored setting to its type; `fallback` where that cannot be done.
template <typename T>
T convertSetting(const QVariant& value, const T& fallback)
{
    if (value.isNull()) {
        return fallback;
    }
    if constexpr (std::is_same_v<T, bool>) {
        return SettingValue::toBool(value).value_or(fallback);
    } else if constexpr (std::is_integral_v<T>) {
        const std::optional<qint64> number = SettingValue::toInteger(value);
        return number && std::in_range<T>(*number) ? static_cast<T>(*number) : fallback;
    } else if constexpr (std::is_floating_point_v<T>) {
        bool ok = false;
        const T number = static_cast<T>(value.toDouble(&ok));
        return ok ? number : fallback;
    } else if constexpr (std::is_same_v<T, QDateTime>) {
        return SettingValue::toDateTime(value).value_or(fallback);
    } else {
        return value.canConvert<T>() ? value.value<T>() : fallback;
    }
}
