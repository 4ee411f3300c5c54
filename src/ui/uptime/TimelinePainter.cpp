// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/uptime/TimelinePainter.h"

#include "base/Format.h"
#include "ui/Ramp.h"
#include "ui/Theme.h"
#include "ui/uptime/RasterImage.h"
#include "ui/uptime/SessionText.h"

#include <QCoreApplication>
#include <QLinearGradient>
#include <QLocale>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int HourSeconds = 3600;
constexpr int DayHours = 24;
constexpr double Rounding = 2;
constexpr double Hair = 0.5;    ///< Half a pixel, so that a line fills whole ones.
constexpr double GoingOn = 4;   ///< Of the mark at the end of a session that goes on.
constexpr int YearColumns = 62; ///< Columns of this many days at least stand for years.

/// Every so many hours an axis of `length` pixels has room for a label of `width`.
int hoursBetweenLabels(double length, int width)
{
    for (const int hours : {1, 2, 3, 6}) {
        if (length / DayHours * hours >= width) {
            return hours;
        }
    }
    return DayHours / 2;
}

/// What lies over marks and leaves them to be seen.
QColor faint(QColor colour)
{
    constexpr float strength = 0.14F;
    colour.setAlphaF(strength);
    return colour;
}

QString translated(const char* text)
{
    return QCoreApplication::translate("TimelinePainter", text);
}

} // namespace

TimelinePainter::TimelinePainter(QPainter& painter, const SessionPlan& plan,
                                 const TimelineLayout& layout, const Look& look)
    : m_painter(painter)
    , m_plan(plan)
    , m_layout(layout)
    , m_look(look)
{
}

void TimelinePainter::paint()
{
    m_painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    if (m_plan.isRaster()) {
        paintRaster();
    } else {
        paintRows();
    }
    if (m_look.current >= 0) {
        paintLane(m_look.current);
    }
}

void TimelinePainter::paintRows()
{
    const Theme::Colours colours = Theme::colours(m_look.palette);
    m_painter.setFont(m_look.caption);
    m_painter.setPen(Qt::NoPen);
    for (int row = 0; row < m_plan.laneCount(); ++row) {
        m_painter.setBrush(row == m_look.hovered ? colours.hairline : colours.track);
        const QRectF day = m_layout.bar(row, 0, m_plan.days().at(row).seconds);
        m_painter.drawRoundedRect(day, Rounding, Rounding);
    }
    paintRowHours();
    paintEachPart(&TimelinePainter::paintPart);
    // Above all bars: where the clock was set back, one may lie over another.
    paintEachPart(&TimelinePainter::paintPartText);
    paintRowLabels();
}

void TimelinePainter::paintRowHours()
{
    const Theme::Colours colours = Theme::colours(m_look.palette);
    const QFontMetrics metrics(m_look.caption);
    const QRectF& plot = m_layout.plot();
    const int width = metrics.horizontalAdvance(Format::hour(0)) + 2 * Theme::Rhythm;
    const int step = hoursBetweenLabels(plot.width(), width);
    const bool isOneDay = m_plan.laneCount() == 1;
    const QDateTime begin = m_plan.firstDay(0).startOfDay();
    const int hours = static_cast<int>(m_plan.laneSeconds()) / HourSeconds;
    for (int hour = 0; hour <= hours; ++hour) {
        // The hours of one day are those of its clock; those of several, of an ordinary day's.
        const int shown =
            isOneDay ? begin.addSecs(static_cast<qint64>(hour) * HourSeconds).time().hour() : hour;
        if (shown % step != 0 || shown > DayHours) {
            continue;
        }
        const double x = m_layout.positionOf(static_cast<qint64>(hour) * HourSeconds);
        m_painter.setPen(QPen(faint(colours.text), 1));
        m_painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
        m_painter.setPen(colours.mutedText);
        const QString text = Format::hour(shown == 0 && hour > 0 ? DayHours : shown);
        m_painter.drawText(
            QRectF(x - width / 2.0, plot.bottom() + Theme::Rhythm / 2.0, width, metrics.height()),
            Qt::AlignCenter, text);
    }
}

void TimelinePainter::paintRowLabels()
{
    const QFontMetrics metrics(m_look.caption);
    m_painter.setPen(Theme::colours(m_look.palette).mutedText);
    QList<QRectF> taken;
    const auto paintLabel = [this, &metrics, &taken](int row) {
        const QRectF lane = m_layout.lane(row);
        QRectF room(0, 0, lane.left() - Theme::Rhythm, metrics.height());
        room.moveTop(lane.center().y() - room.height() / 2);
        const bool isFree = std::none_of(taken.begin(), taken.end(), [&room](const QRectF& other) {
            return other.intersects(room);
        });
        if (isFree) {
            taken.append(room);
            m_painter.drawText(room, Qt::AlignRight | Qt::AlignVCenter, m_plan.rowLabel(row));
        }
    };
    // Where there is no room for all, the odd days come first, then every so many from the last.
    for (int row = 0; row < m_plan.laneCount(); ++row) {
        if (m_plan.days().at(row).isShifted()) {
            paintLabel(row);
        }
    }
    for (int row = m_plan.laneCount() - 1; row >= 0; --row) {
        paintLabel(row);
    }
}

void TimelinePainter::paintEachPart(void (TimelinePainter::*step)(int, const SessionPart&))
{
    for (int row = 0; row < m_plan.laneCount(); ++row) {
        for (const SessionPart& part : m_plan.days().at(row).parts) {
            (this->*step)(row, part);
        }
    }
}

void TimelinePainter::paintPart(int row, const SessionPart& part)
{
    const Theme::Colours colours = Theme::colours(m_look.palette);
    const BootSession& session = m_plan.sessions().at(part.session);
    const QRectF bar = m_layout.bar(row, part.from, part.to);
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(colours.accent);
    m_painter.drawRoundedRect(bar, Rounding, Rounding);
    const bool endsHere = session.end.date() == m_plan.firstDay(row);
    if (endsHere && SessionDays::isRunning(session, m_look.now)) {
        const double half = std::min(bar.height() / 2, 2 * GoingOn);
        paintGoingOn({bar.right() + half + 2, bar.center().y()}, {0, half}, {-half, 0});
    }
}

void TimelinePainter::paintPartText(int row, const SessionPart& part)
{
    const BootSession& session = m_plan.sessions().at(part.session);
    const QRectF bar = m_layout.bar(row, part.from, part.to);
    const QFontMetrics metrics(m_look.caption);
    const QString length = SessionText::length(session, m_look.now);
    const QString span = SessionText::clocks(session) + QLatin1Char('\n') + length;
    const double room = bar.width() - 2 * Theme::Rhythm;
    m_painter.setPen(Ramp::textOn(Theme::colours(m_look.palette).accent));
    if (bar.height() >= 2 * metrics.height() && room >= metrics.size(0, span).width()) {
        m_painter.drawText(bar, Qt::AlignCenter, span);
    } else if (bar.height() >= metrics.height() && room >= metrics.horizontalAdvance(length)) {
        m_painter.drawText(bar, Qt::AlignCenter, length);
    }
}

void TimelinePainter::paintGoingOn(const QPointF& tip, const QPointF& across, const QPointF& along)
{
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(Theme::colours(m_look.palette).accent);
    m_painter.drawPolygon(QPolygonF({tip, tip + along + across, tip + along - across}));
}

void TimelinePainter::paintRaster()
{
    const Theme::Colours colours = Theme::colours(m_look.palette);
    const QRectF& plot = m_layout.plot();
    m_painter.setFont(m_look.caption);
    m_painter.fillRect(plot, colours.track);
    m_painter.drawImage(plot, m_look.raster);
    if (m_look.hovered >= 0) {
        m_painter.fillRect(m_layout.lane(m_look.hovered), faint(colours.text));
    }
    paintRasterHours();
    paintRasterDays();
    if (m_plan.raster().daysPerColumn() > 1) {
        paintLegend();
    }
}

void TimelinePainter::paintRasterHours()
{
    const Theme::Colours colours = Theme::colours(m_look.palette);
    const QFontMetrics metrics(m_look.caption);
    const QRectF& plot = m_layout.plot();
    const int step = hoursBetweenLabels(plot.height(), 2 * metrics.height());
    for (int hour = 0; hour <= DayHours; hour += step) {
        const double y = m_layout.positionOf(static_cast<qint64>(hour) * HourSeconds);
        m_painter.setPen(QPen(faint(colours.text), 1));
        m_painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
        m_painter.setPen(colours.mutedText);
        m_painter.drawText(
            QRectF(0, y - metrics.height() / 2.0, plot.left() - Theme::Rhythm, metrics.height()),
            Qt::AlignRight | Qt::AlignVCenter, Format::hour(hour));
    }
}

void TimelinePainter::paintRasterDays()
{
    const Theme::Colours colours = Theme::colours(m_look.palette);
    const QFontMetrics metrics(m_look.caption);
    const QRectF& plot = m_layout.plot();
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    const QDate firstDay = m_plan.firstDay(0);
    const QDate lastDay = m_plan.lastDay(m_plan.laneCount() - 1);
    const bool showsYears = firstDay.daysTo(lastDay) / YearColumns > 12;
    double free = plot.left(); // From here on no label stands yet.
    for (QDate month(firstDay.year(), firstDay.month(), 1); month <= lastDay;
         month = month.addMonths(showsYears ? 13 - month.month() : 1)) {
        const bool isYear = month.month() == 1;
        const int column = m_plan.raster().columnOf(month);
        if (column < 0 || (showsYears && !isYear)) {
            continue;
        }
        const double x = m_layout.lane(column).left();
        m_painter.setPen(QPen(colours.mutedText, 1));
        m_painter.drawLine(QPointF(x, plot.bottom()),
                           QPointF(x, plot.bottom() + Theme::Rhythm / 2.0));
        const QString text =
            english.toString(month, isYear ? QStringLiteral("yyyy") : QStringLiteral("MMM"));
        const double width = metrics.horizontalAdvance(text);
        if (x >= free && x + width <= plot.right()) {
            m_painter.drawText(
                QRectF(x, plot.bottom() + Theme::Rhythm / 2.0, width + 1, metrics.height()),
                Qt::AlignLeft | Qt::AlignVCenter, text);
            free = x + width + Theme::Rhythm;
        }
    }
}

void TimelinePainter::paintLegend()
{
    const Theme::Colours colours = Theme::colours(m_look.palette);
    const QFontMetrics metrics(m_look.caption);
    constexpr double barWidth = 96;
    constexpr double barHeight = 8;
    const QString most = QStringLiteral("100 %");
    const QString name =
        translated(QT_TRANSLATE_NOOP("TimelinePainter", "Share of the time on, by week")) +
        QStringLiteral("   0 %");
    const double right = m_layout.plot().right() - metrics.horizontalAdvance(most);
    const QRectF bar(right - Theme::Rhythm - barWidth, (metrics.height() - barHeight) / 2, barWidth,
                     barHeight);
    QLinearGradient gradient(bar.topLeft(), bar.topRight());
    constexpr int stops = 16;
    for (int stop = 0; stop <= stops; ++stop) {
        const float share = static_cast<float>(stop) / stops;
        gradient.setColorAt(static_cast<double>(share),
                            RasterImage::colour(std::max(share, 0.001F),
                                                m_plan.raster().daysPerColumn(), m_look.palette));
    }
    m_painter.fillRect(bar, gradient);
    m_painter.setPen(colours.mutedText);
    m_painter.drawText(QRectF(right, 0, metrics.horizontalAdvance(most) + 1, metrics.height()),
                       Qt::AlignLeft | Qt::AlignVCenter, most);
    m_painter.drawText(QRectF(0, 0, bar.left() - Theme::Rhythm, metrics.height()),
                       Qt::AlignRight | Qt::AlignVCenter, name);
}

void TimelinePainter::paintLane(int lane)
{
    m_painter.setBrush(Qt::NoBrush);
    m_painter.setPen(QPen(Theme::colours(m_look.palette).text, 1));
    m_painter.drawRect(m_layout.lane(lane).adjusted(Hair, Hair, -Hair, -Hair));
}
