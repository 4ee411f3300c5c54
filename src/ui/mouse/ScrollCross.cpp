// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/mouse/ScrollCross.h"

#include "base/Format.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>
#include <array>

namespace {

using Direction = Utils::ScrollDirection;

constexpr std::array Directions{Direction::Up, Direction::Down, Direction::Left, Direction::Right};
constexpr double BarWidth = 16;
constexpr double Hub = 12; ///< From the middle to where the bars start.
constexpr double Rounding = 2;

} // namespace

ScrollCross::ScrollCross(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("scrollCross"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumSize(ScrollCross::sizeHint());
}

QSize ScrollCross::sizeHint() const
{
    constexpr QSize least(184, 132);
    return least;
}

QString ScrollCross::name(Direction direction)
{
    switch (direction) {
    case Direction::Up:
        return tr("Up");
    case Direction::Down:
        return tr("Down");
    case Direction::Left:
        return tr("Left");
    case Direction::Right:
        break;
    }
    return tr("Right");
}

void ScrollCross::setSteps(const QHash<Direction, qint64>& steps)
{
    m_steps = steps;
    QStringList lines;
    for (const Direction direction : Directions) {
        lines.append(
            tr("%1: %2 steps").arg(name(direction), Format::count(m_steps.value(direction))));
    }
    setAccessibleDescription(lines.join(QLatin1Char('\n')));
    setToolTip(accessibleDescription());
    update();
}

QString ScrollCross::figure(Direction direction) const
{
    constexpr qint64 largestInFull = 999'999;
    const qint64 steps = m_steps.value(direction);
    return steps <= largestInFull ? Format::count(steps) : Format::shortCount(steps);
}

QSizeF ScrollCross::labelSize() const
{
    double width = 0;
    for (const Direction direction : Directions) {
        width = std::max({width,
                          static_cast<double>(fontMetrics().horizontalAdvance(figure(direction))),
                          static_cast<double>(fontMetrics().horizontalAdvance(name(direction)))});
    }
    return {width, 2.0 * fontMetrics().height()};
}

double ScrollCross::longestArm() const
{
    const QSizeF label = labelSize();
    const double across = width() / 2.0 - Hub - label.width() - Theme::Rhythm;
    const double along = height() / 2.0 - Hub - label.height() - Theme::Rhythm / 2.0;
    return std::max(1.0, std::min(across, along));
}

ScrollCross::Arm ScrollCross::arm(Direction direction) const
{
    const QSizeF size = labelSize();
    const QPointF middle = QRectF(rect()).center();
    const double reach = Hub + longestArm();
    const double beyond = reach + Theme::Rhythm;
    const auto above = Theme::Rhythm / 2.0;
    const double half = size.height() / 2;
    switch (direction) {
    case Direction::Up:
        return {{0, -1},
                {middle.x() - size.width() / 2, middle.y() - reach - above - size.height(),
                 size.width(), size.height()},
                Qt::AlignHCenter};
    case Direction::Down:
        return {{0, 1},
                {middle.x() - size.width() / 2, middle.y() + reach + above, size.width(),
                 size.height()},
                Qt::AlignHCenter};
    case Direction::Left:
        return {
            {-1, 0},
            {middle.x() - beyond - size.width(), middle.y() - half, size.width(), size.height()},
            Qt::AlignRight};
    case Direction::Right:
        break;
    }
    return {{1, 0},
            {middle.x() + beyond, middle.y() - half, size.width(), size.height()},
            Qt::AlignLeft};
}

void ScrollCross::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    qint64 largest = 1;
    for (const Direction direction : Directions) {
        largest = std::max(largest, m_steps.value(direction));
    }
    for (const Direction direction : Directions) {
        paintArm(painter, direction, largest);
    }
}

void ScrollCross::paintArm(QPainter& painter, Direction direction, qint64 largest) const
{
    const Theme::Colours colours = Theme::colours(palette());
    const auto [unit, label, alignment] = arm(direction);
    const qint64 steps = m_steps.value(direction);
    const QPointF middle = QRectF(rect()).center();
    const QPointF side = QPointF(unit.y(), unit.x()) * (BarWidth / 2);
    const auto bar = [&middle, unit = unit, &side](double length) {
        return QRectF(middle + unit * Hub - side, middle + unit * (Hub + length) + side)
            .normalized();
    };
    painter.setPen(Qt::NoPen);
    painter.setBrush(colours.track);
    painter.drawRoundedRect(bar(longestArm()), Rounding, Rounding);
    if (steps > 0) {
        const double length =
            longestArm() * static_cast<double>(steps) / static_cast<double>(largest);
        painter.setBrush(colours.accent);
        painter.drawRoundedRect(bar(std::max(Rounding, length)), Rounding, Rounding);
    }
    const QRectF upper(label.topLeft(), QSizeF(label.width(), label.height() / 2));
    const int across = static_cast<int>(alignment) | Qt::AlignVCenter;
    painter.setPen(colours.text);
    painter.drawText(upper, across, figure(direction));
    painter.setPen(colours.mutedText);
    painter.drawText(upper.translated(0, upper.height()), across, name(direction));
}
