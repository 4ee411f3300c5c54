// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/RequestShapes.h"

namespace {

using namespace Shapes;

QList<Field> counters(Presence presence, const Shape& distance)
{
    QList<Field> fields{{QStringLiteral("distance_inches"), distance, presence}};
    for (const QString& name :
         {QStringLiteral("keys"), QStringLiteral("clicks"), QStringLiteral("scrolls"),
          QStringLiteral("uptime"), QStringLiteral("download"), QStringLiteral("upload")}) {
        fields.append({name, whole(), presence});
    }
    return fields;
}

/// Required texts.
QList<Field> texts(const QStringList& names, const Shape& shape = text())
{
    QList<Field> fields;
    for (const QString& name : names) {
        fields.append({name, shape});
    }
    return fields;
}

Shape authorization()
{
    static const QRegularExpression uuid(
        QStringLiteral("^[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\z"));
    return object({{QStringLiteral("client_uid"), matching(uuid)},
                   {QStringLiteral("organization_id"), text()}});
}

Shape zurge()
{
    static const QRegularExpression hours(QStringLiteral(
        "^\\d{4}-\\d\\d-\\d\\d_(\\d|1\\d|2[0-3])_(totals|[1-9]\\d*|profile-[1-9]\\d*)\\z"));
    const Shape application = object(
        counters(Presence::Required, whole()) +
        QList<Field>{{QStringLiteral("id"), whole(1)}, {QStringLiteral("lastused"), dateTime()}});
    return object(
        texts({QStringLiteral("keycount"), QStringLiteral("clickcount"), QStringLiteral("uptime"),
               QStringLiteral("download"), QStringLiteral("upload"), QStringLiteral("scrolls"),
               QStringLiteral("distance_inches")},
              decimalText()) +
        QList<Field>{{QStringLiteral("token"), text()},
                     {QStringLiteral("zurge_mechanism"),
                      oneOf({QStringLiteral("auto"), QStringLiteral("manual")})},
                     {QStringLiteral("applications"), listOf(application), Presence::Optional},
                     {QStringLiteral("time_series"),
                      mapOf(hours, object(counters(Presence::Optional, notNegative()))),
                      Presence::Optional}});
}

Shape heatmap(const HeatmapKind& kind)
{
    QList<Field> row{
        {QStringLiteral("day"), day()},
        {QStringLiteral("hour"), whole(0, 23)},
        {kind.subject, kind.subject == QLatin1String("combo") ? nonEmptyText() : whole()},
        {QStringLiteral("count"), whole()}};
    if (kind.scope == HeatmapKind::Scope::Application) {
        row.append({QStringLiteral("path"), nonEmptyText()});
    }
    return object({{kind.field, object({{QStringLiteral("from"), day()},
                                        {QStringLiteral("to"), day()},
                                        {QStringLiteral("rows"), listOf(object(row))}})}});
}

Shape profiles()
{
    return object({{QStringLiteral("profiles"),
                    listOf(object({{QStringLiteral("id"), whole(1)},
                                   {QStringLiteral("name"), nonEmptyText()},
                                   {QStringLiteral("active"), whole(0, 1)},
                                   {QStringLiteral("created_at"), dateTime()},
                                   {QStringLiteral("updated_at"), dateTime()}}))}});
}

Shape applications()
{
    return object(
        {{QStringLiteral("applications"), listOf(object({{QStringLiteral("path"), nonEmptyText()},
                                                         {QStringLiteral("name"), text()},
                                                         {QStringLiteral("version"), text()}}))}});
}

Shape milestone()
{
    return object(texts({QStringLiteral("name"), QStringLiteral("stats_type"),
                         QStringLiteral("custom_message")}) +
                  texts({QStringLiteral("time_created"), QStringLiteral("time_updated"),
                         QStringLiteral("time_last_triggered")},
                        dateTime()) +
                  QList<Field>{{QStringLiteral("id"), whole(1)},
                               {QStringLiteral("stats_amount"), whole()},
                               {QStringLiteral("last_stats_when_triggered"), whole()},
                               {QStringLiteral("milestone_active"), whole(0, 1)}});
}

Shape clientSettings()
{
    // A secret, or an address of the service, has no business here.
    static const QRegularExpression setting(
        QStringLiteral("^(?!proxy_user\\z|proxy_password\\z|service_)[a-z0-9_]+\\z"));
    const Shape coordinate = whole(std::numeric_limits<qint64>::min());
    const Shape label = object({{QStringLiteral("id"), whole(1)},
                                {QStringLiteral("val"), text()},
                                {QStringLiteral("x"), coordinate},
                                {QStringLiteral("y"), coordinate}});
    const Shape settings =
        object({{QStringLiteral("settings"), mapOf(setting, text())},
                {QStringLiteral("geekwindow_labels"), listOf(label)},
                {QStringLiteral("milestones"), listOf(milestone())},
                {QStringLiteral("application_ignore"),
                 listOf(object({{QStringLiteral("path"), nonEmptyText()}}))},
                {QStringLiteral("network_interfaces_ignore"),
                 listOf(object({{QStringLiteral("mac_address"), nonEmptyText()}}))}});
    return object({{QStringLiteral("client_settings"), settings}});
}

Shape computerInfo()
{
    const auto optional = [](const QString& name, const Shape& shape) {
        return Field{name, shape, Presence::Optional};
    };
    const Shape named = jsonText(listOf(object({{QStringLiteral("name"), text()}})));
    const Shape networks = jsonText(listOf(object({{QStringLiteral("description"), text()},
                                                   {QStringLiteral("mac_address"), text()},
                                                   {QStringLiteral("ip_list"), text()},
                                                   {QStringLiteral("is_wifi"), boolean()},
                                                   {QStringLiteral("last_update"), dateTime()}})));
    const Shape monitors = jsonText(listOf(object({{QStringLiteral("id"), text()},
                                                   {QStringLiteral("width"), whole()},
                                                   {QStringLiteral("height"), whole()}})));
    const Shape info = object(
        {optional(QStringLiteral("ComputerModel"), text()),
         optional(QStringLiteral("ComputerOS"), text()),
         optional(QStringLiteral("ComputerPlatform"), text()),
         optional(QStringLiteral("VideoInfo"), text()), optional(QStringLiteral("CPUInfo"), text()),
         optional(QStringLiteral("MemoryInfo"), text()),
         optional(QStringLiteral("isNetworkMonitorSupported"),
                  oneOf({QString(), QStringLiteral("true"), QStringLiteral("false")})),
         optional(QStringLiteral("NetworkInfo_JSON"), networks),
         optional(QStringLiteral("MonitorInfo_JSON"), monitors),
         optional(QStringLiteral("KeyboardInfo_JSON"), named),
         optional(QStringLiteral("MouseInfo_JSON"), named),
         optional(QStringLiteral("TrackpadInfo_JSON"), named)});
    return object({{QStringLiteral("computer_info"), info}});
}

Shape usageStats()
{
    static const QRegularExpression day(QStringLiteral("^\\d{4}-\\d\\d-\\d\\d\\z"));
    static const QRegularExpression window(QStringLiteral("."));
    const Shape event = object(texts({QStringLiteral("event_type"), QStringLiteral("identifier"),
                                      QStringLiteral("page_name"), QStringLiteral("context")}) +
                               QList<Field>{{QStringLiteral("time_created"), dateTime()}});
    return object(
        texts({QStringLiteral("username"), QStringLiteral("computer"),
               QStringLiteral("client_version"), QStringLiteral("client_language"),
               QStringLiteral("lang")}) +
        QList<Field>{{QStringLiteral("userid"), whole()},
                     {QStringLiteral("computerid"), whole()},
                     {QStringLiteral("os"), oneOf({QStringLiteral("linux")})},
                     {QStringLiteral("window_open_times"), mapOf(day, mapOf(window, whole()))},
                     {QStringLiteral("events"), listOf(event)}});
}

Shape updateRequest()
{
    return object({{QStringLiteral("computer_id"), whole()},
                   {QStringLiteral("user_id"), whole()},
                   {QStringLiteral("current_version"), nonEmptyText()},
                   {QStringLiteral("target_version"), nonEmptyText()},
                   {QStringLiteral("os"), oneOf({QStringLiteral("linux")})}});
}

QHash<QString, Shape> allShapes()
{
    QHash<QString, Shape> shapes{
        {QStringLiteral("client_login"),
         object({{QStringLiteral("userid"), whole(1)},
                 {QStringLiteral("computerid"), whole(1)},
                 {QStringLiteral("passwordhash"), nonEmptyText()}})},
        {QStringLiteral("client_init_authorization"), authorization()},
        {QStringLiteral("client_check_authorization"), authorization()},
        {QStringLiteral("zurge"), zurge()},
        {QStringLiteral("get_pending_messages"), object({})},
        {QStringLiteral("reset_token"), object({})},
        {QStringLiteral("refresh_account_info"), object({})},
        {QStringLiteral("testproxy"), object({})},
        {QStringLiteral("get_db_backup_upload_url"), object({})},
        {QStringLiteral("get_db_backup_download_url"),
         object({{QStringLiteral("filename"), nonEmptyText()}})},
        {QStringLiteral("update_request"), updateRequest()},
        {QStringLiteral("sync_client_profiles"), profiles()},
        {QStringLiteral("upload_applications"), applications()},
        {QStringLiteral("save_client_settings"), clientSettings()},
        {QStringLiteral("upload_computerinfo"), computerInfo()},
        {QStringLiteral("upload_usage_stats"), usageStats()},
        {QStringLiteral("upload_file"),
         object({{QStringLiteral("type_upload"),
                  oneOf({QStringLiteral("keyboard_image"), QStringLiteral("mouse_image"),
                         QStringLiteral("database_file"), QStringLiteral("unknown")})}})}};
    for (const HeatmapKind& kind : heatmapKinds()) {
        shapes.insert(kind.requestType, heatmap(kind));
    }
    return shapes;
}

} // namespace

const QList<HeatmapKind>& heatmapKinds()
{
    using Scope = HeatmapKind::Scope;
    static const QList<HeatmapKind> kinds{
        {QStringLiteral("upload_heatmap_keyboard"), QStringLiteral("keyboard_heatmap"),
         QStringLiteral("key"), Scope::Computer},
        {QStringLiteral("upload_heatmap_keyboard_apps"), QStringLiteral("keyboard_heatmap_apps"),
         QStringLiteral("key"), Scope::Application},
        {QStringLiteral("upload_heatmap_keycombinations"),
         QStringLiteral("keycombinations_heatmap"), QStringLiteral("combo"), Scope::Computer},
        {QStringLiteral("upload_heatmap_keycombinations_apps"),
         QStringLiteral("keycombinations_heatmap_apps"), QStringLiteral("combo"),
         Scope::Application},
        {QStringLiteral("upload_heatmap_buttons"), QStringLiteral("buttons_heatmap"),
         QStringLiteral("button"), Scope::Computer},
        {QStringLiteral("upload_heatmap_buttons_apps"), QStringLiteral("buttons_heatmap_apps"),
         QStringLiteral("button"), Scope::Application},
    };
    return kinds;
}

const QHash<QString, Shape>& requestShapes()
{
    static const QHash<QString, Shape> shapes = allShapes();
    return shapes;
}
