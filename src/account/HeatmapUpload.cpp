// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/HeatmapUpload.h"

#include "account/ClientCommunication.h"
#include "account/RequestTypes.h"
#include "base/Format.h"
#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "storage/Settings.h"

#include <QSqlError>

#include <algorithm>
#include <utility>

namespace {

const QString Day = QStringLiteral("day");
const QString Hour = QStringLiteral("hour");
const QString Count = QStringLiteral("count");
const QString Combo = QStringLiteral("combo");
const QString Path = QStringLiteral("path");

/// Invalid where the value is damaged.
QVariant fieldValue(const QString& field, const QVariant& stored)
{
    constexpr qint64 lastHour = 23;
    if (field == Day || field == Combo || field == Path) {
        const QString text = stored.toString();
        return text.isEmpty() ? QVariant() : QVariant(text);
    }
    const qint64 number = stored.toLongLong();
    const bool isRight = number >= 0 && (field != Hour || number <= lastHour);
    return isRight ? QVariant(number) : QVariant();
}

} // namespace

/// One kind of heat map.
struct HeatmapUpload::Kind
{
    QString requestType;
    const SettingKey<QDateTime>* mark;
    const char* name; ///< In the log.
    QString query;
    QStringList fields; ///< Of a row, in the order of the query's columns.
    bool (ClientCommunication::*request)(const ClientCommunication::Map&);

    bool isOfApplications() const { return fields.contains(Path); }
};

const QList<HeatmapUpload::Kind>& HeatmapUpload::kinds()
{
    const auto fields = [](const char* names) {
        return QString::fromLatin1(names).split(QLatin1Char(' '));
    };
    static const QList<Kind> all{
        {RequestTypes::HeatmapKeyboard, &SettingsKeys::OnlineLastHeatmapKeyboard, "keyboard",
         QStringLiteral("SELECT day, hour, key, count FROM keypress_frequency WHERE day BETWEEN ? "
                        "AND ? ORDER BY day"),
         fields("day hour key count"), &ClientCommunication::uploadKeyboardHeatmap},
        {RequestTypes::HeatmapKeyboardApps, &SettingsKeys::OnlineLastHeatmapKeyboardApps,
         "keyboard applications",
         QStringLiteral("SELECT day, hour, key, path, count FROM keypress_frequency_application "
                        "WHERE day BETWEEN ? AND ? ORDER BY day"),
         fields("day hour key path count"), &ClientCommunication::uploadKeyboardHeatmapApps},
        {RequestTypes::HeatmapKeycombinations, &SettingsKeys::OnlineLastHeatmapKeycombinations,
         "key combinations",
         QStringLiteral("SELECT day, hour, combo, count FROM keycombo_frequency WHERE day BETWEEN "
                        "? AND ? ORDER BY day"),
         fields("day hour combo count"), &ClientCommunication::uploadKeyCombinationsHeatmap},
        {RequestTypes::HeatmapKeycombinationsApps,
         &SettingsKeys::OnlineLastHeatmapKeycombinationsApps, "key combinations applications",
         QStringLiteral("SELECT day, hour, combo, path, count FROM keycombo_frequency_application "
                        "WHERE day BETWEEN ? AND ? ORDER BY day"),
         fields("day hour combo path count"),
         &ClientCommunication::uploadKeyCombinationsHeatmapApps},
        {RequestTypes::HeatmapButtons, &SettingsKeys::OnlineLastHeatmapButtons, "buttons",
         QStringLiteral("SELECT day, hour, button, count FROM mouseclicks_frequency WHERE day "
                        "BETWEEN ? AND ? ORDER BY day"),
         fields("day hour button count"), &ClientCommunication::uploadButtonsHeatmap},
        {RequestTypes::HeatmapButtonsApps, &SettingsKeys::OnlineLastHeatmapButtonsApps,
         "buttons applications",
         QStringLiteral("SELECT day, hour, button, path, count FROM "
                        "mouseclicks_frequency_application WHERE day BETWEEN ? AND ? ORDER BY "
                        "day"),
         fields("day hour button path count"), &ClientCommunication::uploadButtonsHeatmapApps},
    };
    return all;
}

QStringList HeatmapUpload::requestTypes() const
{
    QStringList types;
    for (const Kind& kind : kinds()) {
        types += kind.requestType;
    }
    return types;
}

void HeatmapUpload::forget()
{
    Upload::forget();
    m_sent.clear();
    m_confirmed.clear();
}

void HeatmapUpload::uploadHeatmaps()
{
    if (std::ranges::none_of(requestTypes(),
                             [this](const auto& type) { return isWaiting(type); })) {
        uploadFrom(0);
    }
}

void HeatmapUpload::uploadFrom(qsizetype index)
{
    m_portions = 0;
    while (index < kinds().size() && !upload(kinds().at(index))) {
        ++index;
    }
}

bool HeatmapUpload::upload(const Kind& kind)
{
    const Settings& settings = Settings::instance();
    if (!isAllowed() || !settings.value(SettingsKeys::OnlineSendHeatmaps) ||
        (kind.isOfApplications() && !settings.value(SettingsKeys::OnlineSendApplications))) {
        return false;
    }
    Portion portion = read(kind);
    if (portion.rows.isEmpty() || portion.extent == m_confirmed.value(kind.requestType)) {
        return false;
    }
    const ClientCommunication::Map heatmap{
        {QStringLiteral("from"), Format::isoDay(portion.extent.first)},
        {QStringLiteral("to"), Format::isoDay(portion.extent.last)},
        {QStringLiteral("rows"), std::exchange(portion.rows, {})},
    };
    m_sent.insert(kind.requestType, portion);
    return send(kind.requestType, [&] { return (communication().*kind.request)(heatmap); });
}

HeatmapUpload::Portion HeatmapUpload::read(const Kind& kind) const
{
    const QDateTime now = QDateTime::currentDateTime();
    const QDate mark = Settings::instance().value(*kind.mark).date();
    const QDate first = mark.isValid() ? std::min(mark, now.date()) : QDate(1, 1, 1);
    Portion portion{.extent = {.first = first, .last = now.date()}, .rows = {}, .mark = now};
    DSqlQuery query(&database());
    query.setForwardOnly(true);
    query.prepare(kind.query);
    query.bindValue(0, Format::isoDay(first));
    query.bindValue(1, Format::isoDay(now.date()));
    query.exec();
    QDate day;
    while (query.next()) {
        const QVariantMap fields = row(kind, query);
        const QDate rowDay = QDate::fromString(fields.value(Day).toString(), Qt::ISODate);
        if (!rowDay.isValid()) {
            continue;
        }
        if (portion.rows.size() >= RowsAtOnce && rowDay != day) {
            portion.extent.last = day;
            portion.mark = day.addDays(1).startOfDay();
            portion.isLast = false;
            break;
        }
        if (portion.rows.isEmpty() && !mark.isValid()) {
            portion.extent.first = rowDay;
        }
        day = rowDay;
        portion.rows.append(fields);
        portion.extent.count += fields.value(Count).toLongLong();
    }
    if (query.lastError().isValid()) {
        Log::error("Unable to read the {} heatmap: {}", kind.name, query.lastError().text());
        return {}; // A part of it would take the place of what the service has.
    }
    portion.extent.rows = portion.rows.size();
    return portion;
}

QVariantMap HeatmapUpload::row(const Kind& kind, const DSqlQuery& query)
{
    QVariantMap row;
    for (int column = 0; column < kind.fields.size(); ++column) {
        const QString& field = kind.fields.at(column);
        const QVariant value = fieldValue(field, query.value(column));
        if (!value.isValid()) {
            return {};
        }
        row.insert(field, value);
    }
    return row;
}

void HeatmapUpload::answered(const UploadAnswer& answer)
{
    const auto kind = std::ranges::find(kinds(), answer.requestType, &Kind::requestType);
    const Portion portion = m_sent.take(answer.requestType);
    if (answer.isSuccess()) {
        Log::info("Successfully uploaded the {} heatmap.", kind->name);
        Settings::instance().setValue(*kind->mark, portion.mark);
        m_confirmed.insert(answer.requestType, portion.extent);
    } else {
        Log::error("Error uploading {} heatmap data: {}", kind->name, answer.message);
    }
    const bool isServiceThere = answer.status != 0;
    const bool goesOn = answer.isSuccess() && !portion.isLast && ++m_portions < PortionsAtOnce;
    if (isServiceThere && !(goesOn && upload(*kind))) {
        uploadFrom(std::distance(kinds().begin(), kind) + 1);
    }
}
