// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/uptime/SessionTimeline.h"

#include "base/Format.h"
#include "ui/Theme.h"
#include "ui/uptime/RasterImage.h"
#include "ui/uptime/SessionText.h"
#include "ui/uptime/TimelinePainter.h"

#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr QSize LeastSize(320, 72);

} // namespace

SessionTimeline::SessionTimeline(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("sessionTimeline"));
    setMinimumSize(LeastSize);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
}

QSize SessionTimeline::sizeHint() const
{
    return LeastSize;
}

void SessionTimeline::setPlan(const SessionPlan& plan)
{
    m_plan = plan;
    m_current = std::min(m_current, plan.laneCount() - 1);
    m_hovered = -1;
    colour();
    layOut();
    updateAccessibleText();
}

void SessionTimeline::setEmptyText(const QString& text)
{
    m_emptyText = text;
    updateAccessibleText();
    update();
}

void SessionTimeline::colour()
{
    m_image = m_plan.isRaster() ? RasterImage::of(m_plan.raster(), palette()) : QImage();
    update();
}

void SessionTimeline::layOut()
{
    const QFontMetrics caption(Theme::font(Theme::TextSize::Caption));
    const int hourWidth = caption.horizontalAdvance(Format::hour(0));
    const double axis = caption.height() + Theme::Rhythm / 2.0;
    if (m_plan.isRaster()) {
        // The legend stands above; where there is none, half of the first hour.
        const double above = m_plan.raster().daysPerColumn() > 1 ? caption.height() + Theme::Rhythm
                                                                 : caption.height() / 2.0;
        m_layout =
            TimelineLayout(TimelineLayout::Lanes::Columns, m_plan.laneCount(), m_plan.laneSeconds(),
                           QRectF(rect()).adjusted(hourWidth + Theme::Rhythm, above, -1, -axis));
    } else {
        int labels = 0;
        for (int row = 0; row < m_plan.laneCount(); ++row) {
            labels = std::max(labels, caption.horizontalAdvance(m_plan.rowLabel(row)));
        }
        m_layout = TimelineLayout(
            TimelineLayout::Lanes::Rows, m_plan.laneCount(), m_plan.laneSeconds(),
            QRectF(rect()).adjusted(labels + Theme::Rhythm, 0, -hourWidth / 2.0, -axis));
    }
    update();
}

void SessionTimeline::updateAccessibleText()
{
    if (m_plan.sessions().isEmpty()) {
        setAccessibleDescription(m_emptyText);
        return;
    }
    QStringList lines{
        tr("%1 sessions, the last:").arg(Format::count(m_plan.sessions().size())),
        SessionText::describe(m_plan.sessions().constLast(), QDateTime::currentDateTime())};
    if (m_current >= 0) {
        lines.prepend(m_plan.describeLane(m_current));
    }
    setAccessibleDescription(lines.join(QLatin1Char('\n')));
}

QString SessionTimeline::describe(const QPointF& place) const
{
    const int lane = m_layout.laneAt(place);
    if (lane < 0 || m_plan.sessions().isEmpty()) {
        return {};
    }
    // A bar is at least two pixels long, and met a little beside, too.
    constexpr QPointF pixels(3, 3);
    const QPointF origin = m_layout.plot().topLeft();
    const qint64 slack = m_layout.secondsAt(origin + pixels) - m_layout.secondsAt(origin);
    return m_plan.describe(lane, m_layout.secondsAt(place), slack, QDateTime::currentDateTime());
}

void SessionTimeline::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (m_plan.sessions().isEmpty()) {
        painter.setPen(Theme::colours(palette()).mutedText);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
        return;
    }
    const TimelinePainter::Look look{.palette = palette(),
                                     .caption = Theme::font(Theme::TextSize::Caption),
                                     .now = QDateTime::currentDateTime(),
                                     .raster = m_image,
                                     .hovered = m_hovered,
                                     .current = m_current};
    TimelinePainter(painter, m_plan, m_layout, look).paint();
}

bool SessionTimeline::event(QEvent* event)
{
    // The text follows the pointer as it moves; the delayed one would only repeat it.
    return event->type() == QEvent::ToolTip || QWidget::event(event);
}

void SessionTimeline::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        colour();
    }
    if (event->type() == QEvent::FontChange) {
        layOut();
    }
    QWidget::changeEvent(event);
}

void SessionTimeline::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layOut();
}

void SessionTimeline::mouseMoveEvent(QMouseEvent* event)
{
    const QString text = describe(event->position());
    const int lane = text.isEmpty() ? -1 : m_layout.laneAt(event->position());
    if (lane != m_hovered) {
        m_hovered = lane;
        update();
    }
    if (text.isEmpty()) {
        QToolTip::hideText();
    } else {
        QToolTip::showText(event->globalPosition().toPoint(), text, this);
    }
}

void SessionTimeline::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        choose(m_layout.laneAt(event->position()));
    }
}

void SessionTimeline::leaveEvent(QEvent* event)
{
    m_hovered = -1;
    QToolTip::hideText();
    update();
    QWidget::leaveEvent(event);
}

void SessionTimeline::focusOutEvent(QFocusEvent* event)
{
    m_current = -1;
    QToolTip::hideText();
    update();
    QWidget::focusOutEvent(event);
}

void SessionTimeline::choose(int lane)
{
    const bool isNarrower = m_plan.laneCount() > 1;
    if (lane >= 0 && isNarrower) {
        Q_EMIT daysClicked(m_plan.firstDay(lane), m_plan.lastDay(lane));
    }
}

void SessionTimeline::keyPressEvent(QKeyEvent* event)
{
    const int last = m_plan.laneCount() - 1;
    const int here = m_current < 0 ? last + 1 : m_current;
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
        moveTo(std::max(0, here - 1));
        break;
    case Qt::Key_Right:
    case Qt::Key_Down:
        moveTo(std::min(last, here + 1));
        break;
    case Qt::Key_Home:
        moveTo(0);
        break;
    case Qt::Key_End:
        moveTo(last);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        choose(m_current);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void SessionTimeline::moveTo(int lane)
{
    if (lane < 0 || lane >= m_plan.laneCount()) {
        return;
    }
    m_current = lane;
    updateAccessibleText();
    QToolTip::showText(mapToGlobal(m_layout.lane(lane).center().toPoint()),
                       m_plan.describeLane(lane), this);
    update();
}
