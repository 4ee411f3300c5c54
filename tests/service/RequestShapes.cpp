// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/RequestShapes.h"

#include <QDateTime>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <functional>
#include <limits>

namespace {

/// The data of each request type. A text names the kind of a value, or lists the possible ones
/// after
/// "=". An object has these fields, those with "?" perhaps; one field that begins with "^" stands
/// for all whose names match. A list holds what its last entry says, and comes as JSON text where
/// that is the second one.
constexpr auto Shapes = R"({
"client_login": {"userid": "id", "computerid": "id", "passwordhash": "name"},
"client_init_authorization": {"client_uid": "uuid", "organization_id": "text"},
"client_check_authorization": {"client_uid": "uuid", "organization_id": "text"},
"zurge": {
  "token": "text", "zurge_mechanism": "=auto|manual",
  "keycount": "decimal", "clickcount": "decimal", "uptime": "decimal", "download": "decimal",
  "upload": "decimal", "scrolls": "decimal", "distance_inches": "decimal",
  "applications?": [{
    "id": "id", "lastused": "time", "keys": "whole", "clicks": "whole", "scrolls": "whole",
    "uptime": "whole", "download": "whole", "upload": "whole", "distance_inches": "whole"}],
  "time_series?": {
    "^\\d{4}-\\d\\d-\\d\\d_(\\d|1\\d|2[0-3])_(totals|[1-9]\\d*|profile-[1-9]\\d*)\\z": {
      "keys?": "whole", "clicks?": "whole", "scrolls?": "whole", "uptime?": "whole",
      "download?": "whole", "upload?": "whole", "distance_inches?": "number"}}},
"get_pending_messages": {},
"reset_token": {},
"refresh_account_info": {},
"testproxy": {},
"get_db_backup_upload_url": {},
"get_db_backup_download_url": {"filename": "name"},
"update_request": {
  "computer_id": "whole", "user_id": "whole", "current_version": "name", "target_version": "name",
  "os": "=linux"},
"sync_client_profiles": {"profiles": [{
  "id": "id", "name": "name", "active": "flag", "created_at": "time", "updated_at": "time"}]},
"upload_heatmap_keyboard": {"keyboard_heatmap": {"from": "day", "to": "day", "rows": [{
  "day": "day", "hour": "hour", "key": "whole", "count": "whole"}]}},
"upload_heatmap_keyboard_apps": {"keyboard_heatmap_apps": {"from": "day", "to": "day", "rows": [{
  "day": "day", "hour": "hour", "key": "whole", "count": "whole", "path": "name"}]}},
"upload_heatmap_keycombinations": {"keycombinations_heatmap": {"from": "day", "to": "day",
  "rows": [{"day": "day", "hour": "hour", "combo": "name", "count": "whole"}]}},
"upload_heatmap_keycombinations_apps": {"keycombinations_heatmap_apps": {
  "from": "day", "to": "day", "rows": [{
    "day": "day", "hour": "hour", "combo": "name", "count": "whole", "path": "name"}]}},
"upload_heatmap_buttons": {"buttons_heatmap": {"from": "day", "to": "day", "rows": [{
  "day": "day", "hour": "hour", "button": "whole", "count": "whole"}]}},
"upload_heatmap_buttons_apps": {"buttons_heatmap_apps": {"from": "day", "to": "day", "rows": [{
  "day": "day", "hour": "hour", "button": "whole", "count": "whole", "path": "name"}]}},
"upload_applications": {"applications": [{"path": "name", "name": "text", "version": "text"}]},
"save_client_settings": {"client_settings": {
  "settings": {"^(?!proxy_user\\z|proxy_password\\z|service_)[a-z0-9_]+\\z": "text"},
  "geekwindow_labels": [{"id": "id", "val": "text", "x": "integer", "y": "integer"}],
  "milestones": [{
    "id": "id", "name": "text", "stats_type": "text", "custom_message": "text",
    "stats_amount": "whole", "last_stats_when_triggered": "whole", "milestone_active": "flag",
    "time_created": "time", "time_updated": "time", "time_last_triggered": "time"}],
  "application_ignore": [{"path": "name"}],
  "network_interfaces_ignore": [{"mac_address": "name"}]}},
"upload_computerinfo": {"computer_info": {
  "ComputerModel?": "text", "ComputerOS?": "text", "ComputerPlatform?": "text",
  "VideoInfo?": "text", "CPUInfo?": "text", "MemoryInfo?": "text",
  "isNetworkMonitorSupported?": "=|true|false",
  "NetworkInfo_JSON?": ["json", {
    "description": "text", "mac_address": "text", "ip_list": "text", "is_wifi": "bool",
    "last_update": "time"}],
  "MonitorInfo_JSON?": ["json", {"id": "text", "width": "whole", "height": "whole"}],
  "KeyboardInfo_JSON?": ["json", {"name": "text"}],
  "MouseInfo_JSON?": ["json", {"name": "text"}],
  "TrackpadInfo_JSON?": ["json", {"name": "text"}]}},
"upload_usage_stats": {
  "userid": "whole", "computerid": "whole", "username": "text", "computer": "text",
  "os": "=linux", "client_version": "text", "client_language": "text", "lang": "text",
  "window_open_times": {"^\\d{4}-\\d\\d-\\d\\d\\z": {"^.": "whole"}},
  "events": [{
    "event_type": "text", "identifier": "text", "page_name": "text", "context": "text",
    "time_created": "time"}]},
"upload_file": {"type_upload": "=keyboard_image|mouse_image|database_file|unknown"}
})";

/// One kind of value.
struct Kind
{
    const char* description = nullptr;
    std::function<bool(const QJsonValue&)> fits;
};

std::function<bool(const QJsonValue&)> whole(qint64 least, qint64 most)
{
    // Qt keeps a number that was written without fraction and exponent as an integer.
    return [least, most](const QJsonValue& value) {
        return value.toVariant().typeId() == QMetaType::LongLong && value.toInteger() >= least &&
               value.toInteger() <= most;
    };
}

std::function<bool(const QJsonValue&)> matching(const char* pattern)
{
    return [expression = QRegularExpression(QLatin1String(pattern))](const QJsonValue& value) {
        return value.isString() && expression.match(value.toString()).hasMatch();
    };
}

std::function<bool(const QJsonValue&)> timeAs(const char* format)
{
    return [format = QString::fromLatin1(format)](const QJsonValue& value) {
        const QString text = value.toString();
        return !text.isEmpty() && QDateTime::fromString(text, format).toString(format) == text;
    };
}

const QHash<QString, Kind>& kinds()
{
    using Number = std::numeric_limits<qint64>;
    const auto isText = [](const QJsonValue& value) { return value.isString(); };
    static const auto isTime = timeAs("yyyy-MM-dd HH:mm:ss");
    static const auto isDecimal = matching("^(0|[1-9][0-9]*)\\z");
    static const QHash<QString, Kind> all{
        {QStringLiteral("text"), {"a text", isText}},
        {QStringLiteral("name"),
         {"a text of at least one character",
          [](const QJsonValue& value) { return !value.toString().isEmpty(); }}},
        {QStringLiteral("uuid"),
         {"a UUID", matching("^[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\z")}},
        {QStringLiteral("bool"),
         {"true or false", [](const QJsonValue& value) { return value.isBool(); }}},
        {QStringLiteral("integer"), {"a whole number", whole(Number::min(), Number::max())}},
        {QStringLiteral("whole"), {"a whole number from 0", whole(0, Number::max())}},
        {QStringLiteral("id"), {"a whole number from 1", whole(1, Number::max())}},
        {QStringLiteral("flag"), {"0 or 1", whole(0, 1)}},
        {QStringLiteral("hour"), {"an hour", whole(0, 23)}},
        {QStringLiteral("number"),
         {"a number from 0",
          [](const QJsonValue& value) { return value.isDouble() && value.toDouble() >= 0; }}},
        {QStringLiteral("decimal"),
         {"a whole number as text",
          [](const QJsonValue& value) {
              bool fits = false;
              value.toString().toLongLong(&fits);
              return fits && isDecimal(value);
          }}},
        {QStringLiteral("day"), {"a day", timeAs("yyyy-MM-dd")}},
        {QStringLiteral("time"),
         {"a date and time, or empty",
          [](const QJsonValue& value) {
              return value.isString() && (value.toString().isEmpty() || isTime(value));
          }}},
    };
    return all;
}

/// Walks through a value and the shape that it should have.
class Comparison
{
public:
    void compare(const QJsonValue& shape, const QJsonValue& value, const QString& path)
    {
        if (shape.isString()) {
            compareKind(shape.toString(), value, path);
        } else if (shape.isArray()) {
            compareList(shape.toArray(), value, path);
        } else {
            compareObject(shape.toObject(), value, path);
        }
    }

    ShapeFindings findings;

private:
    void expect(bool isRight, const QString& path, const QString& description)
    {
        if (!isRight) {
            findings.faults << QStringLiteral("%1 is not %2").arg(path, description);
        }
    }

    void compareKind(const QString& name, const QJsonValue& value, const QString& path)
    {
        if (name.startsWith(QLatin1Char('='))) {
            const QStringList texts = name.mid(1).split(QLatin1Char('|'));
            expect(value.isString() && texts.contains(value.toString()), path,
                   QStringLiteral("one of ") + texts.join(QStringLiteral(", ")));
            return;
        }
        const Kind kind = kinds().value(name);
        expect(kind.fits(value), path, QString::fromLatin1(kind.description));
    }

    void compareList(const QJsonArray& shape, const QJsonValue& value, const QString& path)
    {
        QJsonValue list = value;
        if (shape.size() > 1) {
            if (value.isString() && value.toString().isEmpty()) {
                return; // Not known.
            }
            const QJsonDocument text = QJsonDocument::fromJson(value.toString().toUtf8());
            list = text.isArray() ? QJsonValue(text.array()) : QJsonValue();
        }
        expect(list.isArray(), path, QStringLiteral("a list"));
        for (const QJsonValue entry : list.toArray()) {
            compare(shape.last(), entry, path + QStringLiteral("[]"));
        }
    }

    void compareObject(const QJsonObject& shape, const QJsonValue& value, const QString& path)
    {
        expect(value.isObject(), path, QStringLiteral("an object"));
        QJsonObject rest = value.toObject();
        if (shape.keys().value(0).startsWith(QLatin1Char('^'))) {
            compareMap(shape, rest, path);
            return;
        }
        for (auto field = shape.begin(); field != shape.end() && value.isObject(); ++field) {
            const bool isOptional = field.key().endsWith(QLatin1Char('?'));
            const QString name = isOptional ? field.key().chopped(1) : field.key();
            const QJsonValue content = rest.take(name);
            if (!isOptional || !content.isUndefined()) {
                compare(field.value(), content, path + QLatin1Char('.') + name);
            }
        }
        for (const QString& name : rest.keys()) {
            findings.unknown << QStringLiteral("%1.%2 is unknown").arg(path, name);
        }
    }

    void compareMap(const QJsonObject& shape, const QJsonObject& map, const QString& path)
    {
        const QRegularExpression names(shape.keys().first());
        for (auto entry = map.begin(); entry != map.end(); ++entry) {
            if (!names.match(entry.key()).hasMatch()) {
                findings.faults << QStringLiteral("%1 has the name %2").arg(path, entry.key());
            }
            compare(shape.begin().value(), entry.value(), path + QLatin1Char('.') + entry.key());
        }
    }
};

} // namespace

const QList<HeatmapKind>& heatmapKinds()
{
    static const QList<HeatmapKind> kinds = [] {
        QList<HeatmapKind> all;
        for (const char* scope : {"", "_apps"}) {
            for (const auto& [counted, subject] :
                 {std::pair("keyboard", "key"), std::pair("keycombinations", "combo"),
                  std::pair("buttons", "button")}) {
                all << HeatmapKind{QLatin1String("upload_heatmap_") + QLatin1String(counted) +
                                       QLatin1String(scope),
                                   QLatin1String(counted) + QLatin1String("_heatmap") +
                                       QLatin1String(scope),
                                   QLatin1String(subject)};
            }
        }
        return all;
    }();
    return kinds;
}

ShapeFindings checkShape(const QString& requestType, const QJsonValue& data)
{
    static const QJsonObject shapes = QJsonDocument::fromJson(Shapes).object();
    Comparison comparison;
    const QJsonValue shape = shapes.value(requestType);
    if (shape.isObject()) {
        comparison.compare(shape, data, QStringLiteral("data"));
    } else {
        comparison.findings.faults
            << QStringLiteral("there is no request type \"%1\"").arg(requestType);
    }
    return comparison.findings;
}
