// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/network/LiveChart.h"

#include "ui/FiguresModel.h"

#include <QDateTime>

#include <algorithm>

namespace {

constexpr int DownloadColour = 0;
constexpr int UploadColour = 1;

std::optional<double> valueOf(const std::optional<TrafficTotals>& rate,
                              qint64 TrafficTotals::*direction)
{
    return rate ? std::optional(static_cast<double>((*rate).*direction)) : std::nullopt;
}

FiguresModel::Column rateColumn(const QString& header)
{
    return {.header = header, .text = [](const QVariant& raw) {
                return Quantity{.name = {}, .kind = Quantity::Kind::BytesPerSecond}.text(
                    raw.toDouble());
            }};
}

} // namespace

LiveChart::LiveChart(Span span, QWidget* parent)
    : SeriesChart(Choice::None, parent)
    , m_span(span)
    , m_model(new FiguresModel({FiguresModel::textColumn(tr("Time")), rateColumn(tr("Download")),
                                rateColumn(tr("Upload"))},
                               this))
{
}

void LiveChart::setTraffic(const LiveTraffic& traffic, qint64 now, const QString& macAddress)
{
    m_now = now;
    const LiveTraffic::Rates rates = m_span == Span::Minute ? traffic.seconds(now, macAddress)
                                                            : traffic.minutes(now, macAddress);
    QList<Column> columns;
    Series download{.name = tr("Download"), .colour = DownloadColour};
    Series upload{.name = tr("Upload"), .colour = UploadColour};
    QList<FiguresModel::Row> rows;
    for (int slot = 0; slot < rates.size(); ++slot) {
        const std::optional<TrafficTotals>& rate = rates.at(slot);
        columns.append(columnAt(slot));
        download.values.append(valueOf(rate, &TrafficTotals::download));
        upload.values.append(valueOf(rate, &TrafficTotals::upload));
        if (rate) {
            rows.append({timeOf(slot), rate->download, rate->upload});
        }
    }
    setContent({.name = tr("Traffic"), .kind = Quantity::Kind::BytesPerSecond},
               m_span == Span::Minute ? tr("Each second") : tr("Mean of each minute"), columns,
               {download, upload});
    m_model->setRows(rows);
}

qint64 LiveChart::secondOf(int slot) const
{
    return m_span == Span::Minute
               ? m_now - LiveTraffic::SlotCount + slot
               : LiveTraffic::firstMinute(m_now) + qint64{slot} * LiveTraffic::SecondsPerMinute;
}

QString LiveChart::timeOf(int slot) const
{
    const QTime time = QDateTime::fromSecsSinceEpoch(secondOf(slot)).time();
    return time.toString(m_span == Span::Minute ? QStringLiteral("HH:mm:ss")
                                                : QStringLiteral("HH:mm"));
}

SeriesChart::Column LiveChart::columnAt(int slot) const
{
    constexpr int quarter = 15;
    constexpr int often = 5;
    if (m_span == Span::Minute) {
        // The labels stand still while the lines move.
        const int ago = LiveTraffic::SlotCount - slot;
        return ago == 1             ? Column{.label = tr("now"), .rank = 1}
               : ago % quarter == 0 ? Column{.label = tr("−%1 s").arg(ago), .rank = 1}
                                    : Column{};
    }
    const int minute = QDateTime::fromSecsSinceEpoch(secondOf(slot)).time().minute();
    return minute % often == 0
               ? Column{.label = timeOf(slot), .rank = minute % quarter == 0 ? 1 : 0}
               : Column{};
}

QString LiveChart::describe(int column) const
{
    QString text = timeOf(column);
    for (const Series& one : series()) {
        const std::optional<double> value = one.values.at(column);
        text += QLatin1Char('\n') +
                tr("%1: %2").arg(one.name, value ? quantity().text(*value) : tr("not known"));
    }
    return text;
}

QString LiveChart::summary() const
{
    QStringList lines;
    for (const Series& one : series()) {
        double largest = 0;
        for (const std::optional<double>& value : one.values) {
            largest = std::max(largest, value.value_or(0));
        }
        lines.append(tr("%1: %2 at most").arg(one.name, quantity().text(largest)));
    }
    return lines.join(QLatin1Char('\n'));
}
