// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/overview/CalendarMonth.h"

#include "ui/Ramp.h"
#include "ui/Theme.h"
#include "ui/TimeSteps.h"

#include <QKeyEvent>
#include <QLinearGradient>
#include <QLocale>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int Weeks = 6; ///< Always as many, so that nothing moves from month to month.
constexpr int DaysPerWeek = TimeSteps::DaysPerWeek;
constexpr double CellGap = 2;
constexpr double CellCorner = 3;
constexpr QSize LeastSize(216, 200);
constexpr QSize UsualSize(256, 224);

const QLocale& english()
{
    static const QLocale locale(QLocale::English, QLocale::UnitedStates);
    return locale;
}

} // namespace

CalendarMonth::CalendarMonth(Qt::DayOfWeek weekStart, QWidget* parent)
    : QWidget(parent)
    , m_weekStart(weekStart)
{
    setObjectName(QStringLiteral("calendarMonth"));
    setMinimumSize(LeastSize);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
}

QSize CalendarMonth::sizeHint() const
{
    return UsualSize;
}

void CalendarMonth::setMonth(const QDate& month, const QMap<QDate, double>& values,
                             const Quantity& quantity, const QDate& today)
{
    m_month = QDate(month.year(), month.month(), 1);
    m_values = values;
    m_quantity = quantity;
    m_today = today;
    m_largest = 0;
    for (const double value : values) {
        m_largest = std::max(m_largest, value);
    }
    if (m_current.isValid()) {
        m_current = QDate(m_month.year(), m_month.month(),
                          std::min(m_current.day(), m_month.daysInMonth()));
    }
    m_hovered = QDate();
    setAccessibleDescription(m_current.isValid() ? describe(m_current) : summary());
    update();
}

void CalendarMonth::setSelected(const QDate& first, const QDate& last)
{
    m_selectedFirst = first;
    m_selectedLast = last;
    update();
}

CalendarMonth::Geometry CalendarMonth::sheet() const
{
    const double line = QFontMetricsF(Theme::font(Theme::TextSize::Caption)).height();
    const double top = line + Theme::Rhythm / 2.0;
    const double bottom = line + Theme::Rhythm;
    const QRectF days(0, top, width(), std::max(1.0, height() - top - bottom));
    return {line, days, days.width() / DaysPerWeek, days.height() / Weeks};
}

int CalendarMonth::indexOf(const QDate& day) const
{
    const int before = (m_month.dayOfWeek() - m_weekStart + DaysPerWeek) % DaysPerWeek;
    return before + day.day() - 1;
}

QRectF CalendarMonth::dayArea(const QDate& day) const
{
    const Geometry geometry = sheet();
    const int index = indexOf(day);
    const int row = index / DaysPerWeek;
    return {geometry.days.left() + index % DaysPerWeek * geometry.columnWidth,
            geometry.days.top() + row * geometry.rowHeight, geometry.columnWidth,
            geometry.rowHeight};
}

QDate CalendarMonth::dayAt(const QPointF& position) const
{
    const Geometry geometry = sheet();
    if (!m_month.isValid() || !geometry.days.contains(position)) {
        return {};
    }
    const QPointF inside = position - geometry.days.topLeft();
    const int column =
        std::min(static_cast<int>(inside.x() / geometry.columnWidth), DaysPerWeek - 1);
    const int row = std::min(static_cast<int>(inside.y() / geometry.rowHeight), Weeks - 1);
    const int day = row * DaysPerWeek + column - indexOf(m_month) + 1;
    // Beyond the month there is no such date.
    return {m_month.year(), m_month.month(), day};
}

QString CalendarMonth::describe(const QDate& day) const
{
    const QString date = english().toString(day, QStringLiteral("dddd, d MMMM yyyy"));
    const auto value = m_values.constFind(day);
    const QString counted = value != m_values.cend() ? m_quantity.text(*value)
                            : isChoosable(day)       ? tr("nothing counted")
                                                     : tr("still to come");
    return tr("%1\n%2: %3").arg(date, m_quantity.name, counted);
}

QString CalendarMonth::summary() const
{
    if (m_values.isEmpty()) {
        return tr("%1: nothing counted")
            .arg(english().toString(m_month, QStringLiteral("MMMM yyyy")));
    }
    const auto largest = std::max_element(m_values.cbegin(), m_values.cend());
    return tr("%1, days counted: %2. Most: %3")
        .arg(english().toString(m_month, QStringLiteral("MMMM yyyy")))
        .arg(m_values.size())
        .arg(describe(largest.key()));
}

void CalendarMonth::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    if (event->reason() != Qt::MouseFocusReason && m_month.isValid()) {
        const QDate last(m_month.year(), m_month.month(), m_month.daysInMonth());
        moveTo(std::max(m_month, std::min(last, m_today)));
    }
}

void CalendarMonth::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    moveTo({});
}

void CalendarMonth::moveTo(const QDate& day)
{
    m_current = day;
    setAccessibleDescription(day.isValid() ? describe(day) : summary());
    update();
}

void CalendarMonth::keyPressEvent(QKeyEvent* event)
{
    const int forward = layoutDirection() == Qt::LeftToRight ? 1 : -1;
    int days = 0;
    switch (event->key()) {
    case Qt::Key_Left:
        days = -forward;
        break;
    case Qt::Key_Right:
        days = forward;
        break;
    case Qt::Key_Up:
        days = -DaysPerWeek;
        break;
    case Qt::Key_Down:
        days = DaysPerWeek;
        break;
    case Qt::Key_PageUp:
        Q_EMIT monthStepped(-1);
        return;
    case Qt::Key_PageDown:
        Q_EMIT monthStepped(1);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        choose(m_current);
        return;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    const QDate target = (m_current.isValid() ? m_current : m_month).addDays(days);
    if (target.month() == m_month.month()) {
        moveTo(target);
        showTip(target, mapToGlobal(dayArea(target).center().toPoint()));
    }
}

void CalendarMonth::choose(const QDate& day)
{
    if (isChoosable(day)) {
        QToolTip::hideText();
        Q_EMIT dayClicked(day);
    }
}

void CalendarMonth::showTip(const QDate& day, const QPoint& globalPosition)
{
    QToolTip::showText(globalPosition, describe(day), this);
}

void CalendarMonth::mouseMoveEvent(QMouseEvent* event)
{
    const QDate day = dayAt(event->position());
    if (day.isValid()) {
        showTip(day, event->globalPosition().toPoint());
    } else {
        QToolTip::hideText();
    }
    if (day != m_hovered) {
        m_hovered = day;
        setCursor(isChoosable(day) ? Qt::PointingHandCursor : Qt::ArrowCursor);
        update();
    }
}

void CalendarMonth::leaveEvent(QEvent* event)
{
    m_hovered = QDate();
    QToolTip::hideText();
    update();
    QWidget::leaveEvent(event);
}

void CalendarMonth::mousePressEvent(QMouseEvent* event)
{
    m_pressed = event->button() == Qt::LeftButton ? dayAt(event->position()) : QDate();
    event->setAccepted(event->button() == Qt::LeftButton);
}

void CalendarMonth::mouseReleaseEvent(QMouseEvent* event)
{
    const QDate pressed = std::exchange(m_pressed, QDate());
    if (pressed.isValid() && pressed == dayAt(event->position())) {
        choose(pressed);
    }
}

void CalendarMonth::paintEvent(QPaintEvent*)
{
    if (!m_month.isValid()) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(Theme::font(Theme::TextSize::Caption));
    paintWeekdays(painter);
    for (QDate day = m_month; day.month() == m_month.month(); day = day.addDays(1)) {
        paintDay(painter, day);
    }
    paintLegend(painter);
}

void CalendarMonth::paintWeekdays(QPainter& painter) const
{
    const Geometry geometry = sheet();
    painter.setPen(Theme::colours(palette()).mutedText);
    for (int column = 0; column < DaysPerWeek; ++column) {
        const int weekday = (m_weekStart - 1 + column) % DaysPerWeek + 1;
        const QRectF area(column * geometry.columnWidth, 0, geometry.columnWidth,
                          geometry.lineHeight);
        painter.drawText(area, Qt::AlignCenter,
                         english().standaloneDayName(weekday, QLocale::ShortFormat));
    }
}

void CalendarMonth::paintDay(QPainter& painter, const QDate& day) const
{
    const Theme::Colours colours = Theme::colours(palette());
    const QRectF cell = dayArea(day).adjusted(CellGap / 2, CellGap / 2, -CellGap / 2, -CellGap / 2);
    const auto value = m_values.constFind(day);
    painter.setPen(Qt::NoPen);
    QColor text = isChoosable(day) ? colours.text : colours.mutedText;
    if (value != m_values.cend()) {
        const QColor ground = Ramp::quantity(m_largest > 0 ? *value / m_largest : 0, palette());
        painter.setBrush(ground);
        painter.drawRoundedRect(cell, CellCorner, CellCorner);
        text = Ramp::textOn(ground);
    } else if (isChoosable(day)) {
        painter.setPen(colours.hairline);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(cell.adjusted(0.5, 0.5, -0.5, -0.5), CellCorner, CellCorner);
    }
    const bool isSelected = m_selectedFirst == m_selectedLast && day == m_selectedLast;
    if (isSelected || day == m_hovered || (day == m_current && hasFocus())) {
        constexpr double thick = 2;
        painter.setPen(QPen(colours.text, isSelected ? thick : 1,
                            day == m_current && hasFocus() ? Qt::DotLine : Qt::SolidLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(cell, CellCorner, CellCorner);
    }
    QFont font = painter.font();
    font.setBold(day == m_today);
    font.setUnderline(day == m_today);
    painter.setFont(font);
    painter.setPen(text);
    painter.drawText(cell, Qt::AlignCenter, QString::number(day.day()));
    font.setBold(false);
    font.setUnderline(false);
    painter.setFont(font);
}

void CalendarMonth::paintLegend(QPainter& painter) const
{
    constexpr int stops = 8;
    constexpr double barHeight = 8;
    const Geometry geometry = sheet();
    const double top = height() - geometry.lineHeight;
    const QFontMetricsF metrics(painter.font());
    const QString name = tr("%1 per day").arg(m_quantity.name);
    const QString least = QStringLiteral("0");
    const QString most = m_quantity.text(m_largest);
    painter.setPen(Theme::colours(palette()).mutedText);
    const QRectF line(0, top, width(), geometry.lineHeight);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, name);
    painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, most);
    const double left = metrics.horizontalAdvance(name) + 2.0 * Theme::Rhythm;
    const double barLeft = left + metrics.horizontalAdvance(least) + Theme::Rhythm / 2.0;
    const double right = width() - metrics.horizontalAdvance(most) - Theme::Rhythm / 2.0;
    painter.drawText(line.adjusted(left, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, least);
    QLinearGradient gradient(barLeft, 0, right, 0);
    for (int stop = 0; stop <= stops; ++stop) {
        const double share = static_cast<double>(stop) / stops;
        gradient.setColorAt(share, Ramp::quantity(share, palette()));
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRoundedRect(QRectF(barLeft, line.center().y() - barHeight / 2,
                                   std::max(0.0, right - barLeft), barHeight),
                            2, 2);
}
