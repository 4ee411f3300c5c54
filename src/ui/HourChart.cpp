// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/HourChart.h"

#include "base/Format.h"
#include "ui/Theme.h"

#include <QBarSeries>
#include <QBarSet>
#include <QCategoryAxis>
#include <QChart>
#include <QGraphicsLayout>
#include <QMouseEvent>
#include <QToolTip>
#include <QValueAxis>

#include <algorithm>
#include <cmath>

namespace {

constexpr QSize LeastSize(320, 168);
constexpr int LabelEveryHours = 3;
constexpr int Intervals = 4; ///< Of the grid, from zero to the top.

/// The least round number at least as large, whose quarter is a whole and round number, too.
qint64 roundTop(qint64 largest)
{
    qint64 decade = 4;
    while (true) {
        for (const qint64 factor : {5, 10, 20}) {
            if (factor * decade >= largest) {
                return factor * decade;
            }
        }
        decade *= 10;
    }
}

} // namespace

HourChart::HourChart(QWidget* parent)
    : QChartView(new QChart, parent)
    , m_set(new QBarSet(tr("Keys")))
    , m_hourAxis(new QCategoryAxis(this))
    , m_keyAxis(new QValueAxis(this))
{
    setObjectName(QStringLiteral("hourChart"));
    setRenderHint(QPainter::Antialiasing);
    setFrameShape(QFrame::NoFrame);
    setBackgroundBrush(Qt::NoBrush);
    setMinimumSize(LeastSize);
    setMouseTracking(true);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    viewport()->setFocusPolicy(Qt::NoFocus);
    chart()->setBackgroundVisible(false);
    chart()->setMargins({0, 0, 0, 0});
    chart()->layout()->setContentsMargins(0, 0, 0, 0);
    chart()->legend()->hide();
    chart()->setAnimationOptions(QChart::NoAnimation);
    chart()->setLocalizeNumbers(true);
    chart()->setLocale(QLocale(QLocale::English, QLocale::UnitedStates));

    auto* series = new QBarSeries;
    constexpr qreal barShare = 0.8;
    series->setBarWidth(barShare);
    series->append(m_set);
    chart()->addSeries(series);
    buildAxes();
    series->attachAxis(m_hourAxis);
    series->attachAxis(m_keyAxis);
    applyTheme();
}

void HourChart::buildAxes()
{
    m_hourAxis->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
    m_hourAxis->setGridLineVisible(false);
    m_hourAxis->setTitleText(tr("Hour of the day"));
    m_keyAxis->setLineVisible(false);
    m_keyAxis->setTickCount(Intervals + 1);
    m_keyAxis->setLabelFormat(QStringLiteral("%.0f"));
    m_keyAxis->setTitleText(tr("Keys"));
    chart()->addAxis(m_hourAxis, Qt::AlignBottom);
    chart()->addAxis(m_keyAxis, Qt::AlignLeft);
}

void HourChart::setDay(const QDate& day, const QHash<int, qint64>& keys)
{
    m_day = day;
    m_keys = keys;
    setSlots(hourSlots(day, QTimeZone::systemTimeZone()));
    qreal largest = 0;
    for (int slot = 0; slot < m_hours.size(); ++slot) {
        const HourSlot& shown = m_hours.at(slot);
        const qreal height =
            static_cast<qreal>(m_keys.value(shown.hour)) / static_cast<qreal>(shown.occurrences);
        largest = std::max(largest, height);
        if (!qFuzzyCompare(m_set->at(slot) + 1, height + 1)) {
            m_set->replace(slot, height);
        }
    }
    setTop(static_cast<qint64>(std::ceil(largest)));
    updateAccessibleText();
}

void HourChart::setSlots(const QList<HourSlot>& hours)
{
    if (hours == m_hours) {
        return;
    }
    m_hours = hours;
    if (m_set->count() > 0) {
        m_set->remove(0, m_set->count());
    }
    for (const QString& label : m_hourAxis->categoriesLabels()) {
        m_hourAxis->remove(label);
    }
    for (int slot = 0; slot < hours.size(); ++slot) {
        m_set->append(0);
        const int hour = hours.at(slot).hour;
        const bool again = slot > 0 && hours.at(slot - 1).hour == hour;
        if (hour % LabelEveryHours == 0 && !again) {
            m_hourAxis->append(Format::hour(hour), slot);
        }
    }
    constexpr qreal halfBar = 0.5;
    m_hourAxis->setRange(-halfBar, static_cast<qreal>(hours.size()) - halfBar);
}

void HourChart::setTop(qint64 largest)
{
    const auto top = static_cast<qreal>(roundTop(largest));
    if (!qFuzzyCompare(top, m_keyAxis->max())) {
        m_keyAxis->setRange(0, top);
    }
}

void HourChart::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QChartView::changeEvent(event);
}

void HourChart::applyTheme()
{
    const Theme::Colours colours = Theme::colours(palette());
    const QFont caption = Theme::font(Theme::TextSize::Caption);
    const auto style = [&colours, &caption](QAbstractAxis* axis) {
        axis->setLabelsFont(caption);
        axis->setTitleFont(caption);
        axis->setLabelsColor(colours.mutedText);
        axis->setTitleBrush(colours.mutedText);
        axis->setGridLineColor(colours.grid);
        axis->setLinePenColor(colours.hairline);
    };
    style(m_hourAxis);
    style(m_keyAxis);
    m_set->setColor(colours.accent);
    m_set->setBorderColor(Qt::transparent);
}

QString HourChart::describe(int slot) const
{
    const HourSlot& shown = m_hours.at(slot);
    const QString text = shown.occurrences == 1
                             ? tr("%1 to %2, keys: %3")
                             : tr("%1 to %2, which comes twice, keys in both: %3");
    return text.arg(Format::hour(shown.hour), Format::hour((shown.hour + 1) % 24),
                    Format::count(m_keys.value(shown.hour)));
}

void HourChart::updateAccessibleText()
{
    QStringList lines;
    for (int slot = 0; slot < m_hours.size(); ++slot) {
        const int hour = m_hours.at(slot).hour;
        const bool again = slot > 0 && m_hours.at(slot - 1).hour == hour;
        if (m_keys.value(hour) > 0 && !again) {
            lines.append(describe(slot));
        }
    }
    setAccessibleDescription(lines.join(QLatin1Char('\n')));
}

void HourChart::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF scenePosition = mapToScene(event->position().toPoint());
    const QPointF position = chart()->mapFromScene(scenePosition);
    const auto slot = static_cast<int>(std::lround(chart()->mapToValue(position).x()));
    if (chart()->plotArea().contains(position) && slot >= 0 && slot < m_hours.size()) {
        QToolTip::showText(event->globalPosition().toPoint(),
                           Format::day(m_day) + QLatin1Char('\n') + describe(slot), this);
    } else {
        QToolTip::hideText();
    }
    QChartView::mouseMoveEvent(event);
}

void HourChart::leaveEvent(QEvent* event)
{
    QToolTip::hideText();
    QChartView::leaveEvent(event);
}
