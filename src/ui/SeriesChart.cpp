// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/SeriesChart.h"

#include "ui/Ramp.h"
#include "ui/Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr QSize LeastSize(280, 152);
constexpr QSize UsualSize(480, 208);
constexpr double HalfRhythm = Theme::Rhythm / 2.0;
constexpr double LeastBar = 2; ///< Pixels, wide and high.
constexpr double WidestBar = 64;
constexpr double BarShare = 0.8;
constexpr int MostSteps = 4;
constexpr double LinesPerStep = 2.5; ///< Room that a step of the axis needs, in lines of text.

} // namespace

SeriesChart::SeriesChart(Choice choice, QWidget* parent)
    : QWidget(parent)
    , m_choice(choice)
    , m_font(Theme::font(Theme::TextSize::Caption))
{
    setMinimumSize(LeastSize);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMouseTracking(true);
    setFocusPolicy(choice == Choice::Columns ? Qt::StrongFocus : Qt::NoFocus);
}

QSize SeriesChart::sizeHint() const
{
    return UsualSize;
}

void SeriesChart::setContent(const Quantity& quantity, const QString& caption,
                             const QList<Column>& columns, const QList<Series>& series)
{
    m_quantity = quantity;
    m_caption = caption;
    if (columns.size() != m_columns.size()) {
        m_hovered = -1;
        m_current = -1;
    }
    m_columns = columns;
    m_series = series;
    layOut();
    setAccessibleDescription(m_current >= 0 ? describe(m_current) : summary());
    update();
}

void SeriesChart::setMark(int column, const QString& word)
{
    if (column != m_marked || word != m_markWord) {
        m_marked = column;
        m_markWord = word;
        update();
    }
}

void SeriesChart::choose(int) {}

void SeriesChart::layOut()
{
    const QFontMetricsF metrics(m_font);
    const double top = metrics.height() + Theme::Rhythm;
    const double bottom = metrics.height() + HalfRhythm;
    const double height = std::max(1.0, this->height() - top - bottom);
    double largest = 0;
    for (const Series& series : std::as_const(m_series)) {
        for (const std::optional<double>& value : series.values) {
            largest = std::max(largest, value.value_or(0));
        }
    }
    const auto room = static_cast<int>(height / (metrics.height() * LinesPerStep));
    m_steps = axisSteps(m_quantity, largest, std::clamp(room, 1, MostSteps));
    double left = 0;
    for (int line = 0; line <= m_steps.count; ++line) {
        left = std::max(left, metrics.horizontalAdvance(m_steps.label(line)));
    }
    left += Theme::Rhythm;
    const double right = layOutEndLabels();
    m_plot = {left, top, std::max(1.0, width() - left - right), height};
    placeEndLabels();
}

double SeriesChart::layOutEndLabels()
{
    m_endLabels.clear();
    if (isBars()) {
        return 1;
    }
    const QFontMetricsF metrics(m_font);
    double widest = 0;
    for (int i = 0; i < m_series.size(); ++i) {
        widest = std::max(widest, metrics.horizontalAdvance(elidedName(m_series.at(i))));
        m_endLabels.append({i, 0});
    }
    return widest + Theme::Rhythm + HalfRhythm;
}

QString SeriesChart::elidedName(const Series& series) const
{
    constexpr double mostShare = 0.25;
    return QFontMetricsF(m_font).elidedText(series.name, Qt::ElideRight, width() * mostShare);
}

void SeriesChart::placeEndLabels()
{
    for (EndLabel& label : m_endLabels) {
        const QList<std::optional<double>>& values = m_series.at(label.series).values;
        const auto last = std::find_if(values.rbegin(), values.rend(),
                                       [](const auto& value) { return value.has_value(); });
        label.y = yOf(last != values.rend() ? last->value_or(0) : 0);
    }
    std::stable_sort(m_endLabels.begin(), m_endLabels.end(),
                     [](const EndLabel& a, const EndLabel& b) { return a.y < b.y; });
    // Pushed down where they would overlap, then all back up from the bottom.
    const double line = QFontMetricsF(m_font).height();
    for (qsizetype i = 1; i < m_endLabels.size(); ++i) {
        m_endLabels[i].y = std::max(m_endLabels.at(i).y, m_endLabels.at(i - 1).y + line);
    }
    double lowest = m_plot.bottom() - line / 2 + HalfRhythm;
    for (qsizetype i = m_endLabels.size() - 1; i >= 0; --i) {
        m_endLabels[i].y = std::min(m_endLabels.at(i).y, lowest);
        lowest = m_endLabels.at(i).y - line;
    }
}

QColor SeriesChart::colour(const Series& series) const
{
    if (series.colour == Series::Accent) {
        return Theme::colours(palette()).accent;
    }
    return series.colour < Ramp::Categories ? Ramp::category(series.colour, palette())
                                            : Ramp::otherCategory(palette());
}

QRectF SeriesChart::columnArea(int column) const
{
    const double width = m_plot.width() / std::max(1, columnCount());
    return {m_plot.left() + width * column, m_plot.top(), width, m_plot.height()};
}

int SeriesChart::columnAt(const QPointF& position) const
{
    // What lies below a column is its label, which belongs to it.
    const bool isInside = position.x() >= m_plot.left() && position.x() < m_plot.right() &&
                          position.y() >= m_plot.top() && position.y() < height();
    if (!isInside || m_columns.isEmpty()) {
        return -1;
    }
    const double share = (position.x() - m_plot.left()) / m_plot.width();
    return std::min(static_cast<int>(share * columnCount()), columnCount() - 1);
}

double SeriesChart::yOf(double value) const
{
    return m_plot.bottom() - value / m_steps.top() * m_plot.height();
}

void SeriesChart::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange) {
        m_font = Theme::font(Theme::TextSize::Caption);
        layOut();
    }
    QWidget::changeEvent(event);
}

void SeriesChart::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layOut();
}

void SeriesChart::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    if (m_current < 0 && event->reason() != Qt::MouseFocusReason) {
        moveTo(columnCount() - 1);
    }
}

void SeriesChart::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    moveTo(-1);
}

void SeriesChart::moveTo(int column)
{
    m_current = std::min(column, columnCount() - 1);
    setAccessibleDescription(m_current >= 0 ? describe(m_current) : summary());
    update();
}

void SeriesChart::keyPressEvent(QKeyEvent* event)
{
    const int last = columnCount() - 1;
    const int step = layoutDirection() == Qt::LeftToRight ? 1 : -1;
    int target = -1;
    switch (event->key()) {
    case Qt::Key_Left:
        target = std::clamp(m_current - step, 0, std::max(0, last));
        break;
    case Qt::Key_Right:
        target = std::clamp(m_current + step, 0, std::max(0, last));
        break;
    case Qt::Key_Home:
        target = 0;
        break;
    case Qt::Key_End:
        target = last;
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (m_current >= 0) {
            choose(m_current);
        }
        return;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    moveTo(target);
    if (m_current >= 0) {
        showTip(m_current, mapToGlobal(columnArea(m_current).center().toPoint()));
    }
}

void SeriesChart::showTip(int column, const QPoint& globalPosition)
{
    QToolTip::showText(globalPosition, describe(column), this);
}

void SeriesChart::mouseMoveEvent(QMouseEvent* event)
{
    const int column = columnAt(event->position());
    if (column >= 0) {
        showTip(column, event->globalPosition().toPoint());
    } else {
        QToolTip::hideText();
    }
    if (column != m_hovered) {
        m_hovered = column;
        const bool isChoosable = column >= 0 && m_choice == Choice::Columns;
        setCursor(isChoosable ? Qt::PointingHandCursor : Qt::ArrowCursor);
        update();
    }
    QWidget::mouseMoveEvent(event);
}

void SeriesChart::leaveEvent(QEvent* event)
{
    m_hovered = -1;
    QToolTip::hideText();
    update();
    QWidget::leaveEvent(event);
}

void SeriesChart::mousePressEvent(QMouseEvent* event)
{
    const bool chooses = m_choice == Choice::Columns && event->button() == Qt::LeftButton;
    m_pressed = chooses ? columnAt(event->position()) : -1;
    event->setAccepted(chooses);
}

void SeriesChart::mouseReleaseEvent(QMouseEvent* event)
{
    const int column = std::exchange(m_pressed, -1);
    if (column >= 0 && column == columnAt(event->position())) {
        QToolTip::hideText();
        choose(column);
    }
}

void SeriesChart::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setFont(m_font);
    paintGrounds(painter);
    paintGrid(painter);
    paintColumnLabels(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isBars()) {
        paintBars(painter);
        return;
    }
    for (const Series& series : m_series) {
        paintLine(painter, series);
    }
    paintEndLabels(painter);
}

void SeriesChart::paintGrounds(QPainter& painter) const
{
    const Theme::Colours colours = Theme::colours(palette());
    for (const int column : {m_marked, m_hovered}) {
        if (column >= 0 && column < columnCount()) {
            painter.fillRect(columnArea(column), colours.track);
        }
    }
    if (m_current >= 0 && hasFocus()) {
        painter.setPen(QPen(colours.text, 1, Qt::DotLine));
        painter.drawRect(columnArea(m_current).adjusted(0, 0, -1, -1));
    }
}

void SeriesChart::paintGrid(QPainter& painter) const
{
    const Theme::Colours colours = Theme::colours(palette());
    const double line = QFontMetricsF(m_font).height();
    for (int i = 0; i <= m_steps.count; ++i) {
        const double y = std::round(yOf(m_steps.step * i)) - 0.5;
        painter.setPen(i == 0 ? colours.hairline : colours.grid);
        painter.drawLine(QPointF(m_plot.left(), y), QPointF(m_plot.right(), y));
        painter.setPen(colours.mutedText);
        const QRectF area(0, y - line / 2, m_plot.left() - Theme::Rhythm, line);
        painter.drawText(area, Qt::AlignRight | Qt::AlignVCenter, m_steps.label(i));
    }
    const QString caption =
        m_steps.unit.isEmpty() ? m_caption : tr("%1 (%2)").arg(m_caption, m_steps.unit);
    painter.drawText(QRectF(0, 0, width(), line), Qt::AlignLeft | Qt::AlignVCenter, caption);
    if (m_marked >= 0 && m_marked < columnCount()) {
        const double wide = QFontMetricsF(m_font).horizontalAdvance(m_markWord);
        const double left = std::min(columnArea(m_marked).center().x() - wide / 2, width() - wide);
        const double captionEnd = QFontMetricsF(m_font).horizontalAdvance(caption) + Theme::Rhythm;
        if (left >= captionEnd) { // Both have one line.
            painter.drawText(QPointF(left, m_plot.top() - HalfRhythm), m_markWord);
        }
    }
}

QRectF SeriesChart::labelArea(int column) const
{
    const QFontMetricsF metrics(m_font);
    const double wide = metrics.horizontalAdvance(m_columns.at(column).label);
    const double middle = columnArea(column).center().x();
    const double left = std::clamp(middle - wide / 2, 0.0, std::max(0.0, width() - wide));
    return {left, m_plot.bottom() + HalfRhythm, wide, metrics.height()};
}

bool SeriesChart::labelsFit(int rank) const
{
    double free = -1;
    for (int column = 0; column < columnCount(); ++column) {
        const Column& shown = m_columns.at(column);
        if (shown.rank < rank || shown.label.isEmpty()) {
            continue;
        }
        const QRectF area = labelArea(column);
        if (area.left() < free) {
            return false;
        }
        free = area.right() + Theme::Rhythm;
    }
    return true;
}

void SeriesChart::paintColumnLabels(QPainter& painter) const
{
    int highest = 0;
    for (const Column& column : m_columns) {
        highest = std::max(highest, column.rank);
    }
    int rank = 0;
    while (rank < highest && !labelsFit(rank)) {
        ++rank;
    }
    painter.setPen(Theme::colours(palette()).mutedText);
    double free = -1;
    for (int column = 0; column < columnCount(); ++column) {
        const Column& shown = m_columns.at(column);
        if (shown.rank < rank || shown.label.isEmpty() || labelArea(column).left() < free) {
            continue;
        }
        const QRectF area = labelArea(column);
        painter.drawText(area, Qt::AlignCenter | Qt::TextDontClip, shown.label);
        free = area.right() + Theme::Rhythm;
    }
}

void SeriesChart::paintBars(QPainter& painter) const
{
    const QColor filled = colour(m_series.constFirst());
    painter.setPen(Qt::NoPen);
    for (int column = 0; column < columnCount(); ++column) {
        const std::optional<double> value = m_series.constFirst().values.at(column);
        if (!value) {
            continue;
        }
        const QRectF area = columnArea(column);
        const double wide = std::clamp(area.width() * BarShare, LeastBar, WidestBar);
        const double high = *value > 0 ? std::max(LeastBar, m_plot.bottom() - yOf(*value)) : 1;
        const double round = std::min({2.0, wide / 4, high / 2});
        // Zero is a hairline, where a gap shows nothing.
        painter.setBrush(*value > 0 ? filled : Theme::colours(palette()).mutedText);
        painter.drawRoundedRect(
            QRectF(area.center().x() - wide / 2, m_plot.bottom() - high, wide, high), round, round);
    }
}

void SeriesChart::paintLine(QPainter& painter, const Series& series) const
{
    constexpr double lineWidth = 2;
    constexpr double dot = 1.5; // With the pen around it.
    const QColor stroke = colour(series);
    const auto pointAt = [this, &series](int column) {
        return QPointF(columnArea(column).center().x(), yOf(series.values.at(column).value_or(0)));
    };
    const auto hasValue = [this, &series](int column) {
        return column >= 0 && column < columnCount() && series.values.at(column).has_value();
    };
    // Piece by piece: a path of years is far slower, since it is stroked as one shape.
    painter.setPen(QPen(stroke, lineWidth, Qt::SolidLine, Qt::RoundCap));
    painter.setBrush(stroke);
    for (int column = 0; column < columnCount(); ++column) {
        if (!hasValue(column)) {
            continue;
        }
        const bool follows = hasValue(column - 1);
        if (follows) {
            painter.drawLine(pointAt(column - 1), pointAt(column));
        }
        if ((!follows && !hasValue(column + 1)) || column == m_hovered) {
            painter.drawEllipse(pointAt(column), dot, dot);
        }
    }
}

void SeriesChart::paintEndLabels(QPainter& painter) const
{
    const double line = QFontMetricsF(m_font).height();
    const double left = m_plot.right() + Theme::Rhythm;
    for (const EndLabel& label : m_endLabels) {
        const Series& series = m_series.at(label.series);
        painter.setPen(QPen(colour(series), 3, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(m_plot.right() + 2, label.y),
                         QPointF(m_plot.right() + HalfRhythm, label.y));
        painter.setPen(Theme::colours(palette()).text);
        painter.drawText(QRectF(left, label.y - line / 2, width() - left, line),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, elidedName(series));
    }
}
