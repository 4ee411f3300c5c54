// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/keyboard/KeyboardDrawing.h"

#include "base/Format.h"
#include "ui/Ramp.h"
#include "ui/Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr double LeastUnit = 24;
constexpr double MostUnit = 64; ///< Beyond, a keyboard fills a screen and says no more.
constexpr double LeastCountText = 9;

} // namespace

/// What all caps are painted with.
struct KeyboardDrawing::Look
{
    Theme::Colours colours;
    QFont character; ///< Of legends of one or two characters.
    QFont word;
    QFont count;
    bool showsCounts;
    double padding;
};

KeyboardDrawing::KeyboardDrawing(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("keyboardDrawing"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void KeyboardDrawing::setKeyboard(const KeyboardLayout& keyboard)
{
    m_keyboard = keyboard;
    m_boardSize = keyboard.size();
    m_focused = 0;
    updateScale();
    updateGeometry();
}

void KeyboardDrawing::setCounts(const QHash<int, qint64>& counts)
{
    if (counts == m_counts) {
        return;
    }
    m_counts = counts;
    m_sum = std::accumulate(counts.begin(), counts.end(), qint64(0));
    updateScale();
}

void KeyboardDrawing::setScaleForm(QuantityScale::Form form)
{
    m_scale = {m_scale.largest(), form};
    update();
}

void KeyboardDrawing::updateScale()
{
    qint64 largest = 0;
    for (const KeyboardKey& key : m_keyboard.keys()) {
        largest = std::max(largest, key.isCounted() ? m_counts.value(key.key) : 0);
    }
    m_scale = {largest, m_scale.form()};
    update();
}

QString KeyboardDrawing::describe(int index) const
{
    const KeyboardKey& key = m_keyboard.keys().at(index);
    if (!key.isCounted()) {
        return tr("%1: counted in the totals only").arg(key.name);
    }
    const QString name =
        m_keyboard.isShared(key.key) ? tr("%1, left and right").arg(key.name) : key.name;
    const qint64 count = m_counts.value(key.key);
    if (count == 0) {
        return tr("%1: not pressed").arg(name);
    }
    constexpr double percent = 100;
    const QString share = QLocale::c().toString(
        percent * static_cast<double>(count) / static_cast<double>(m_sum), 'f', 1);
    return count == 1 ? tr("%1: 1 key, %2 %").arg(name, share)
                      : tr("%1: %2 keys, %3 %").arg(name, Format::count(count), share);
}

QSize KeyboardDrawing::minimumSizeHint() const
{
    return (m_boardSize * LeastUnit).toSize();
}

QSize KeyboardDrawing::sizeHint() const
{
    constexpr double usualUnit = 36;
    return (m_boardSize * usualUnit).toSize();
}

int KeyboardDrawing::heightForWidth(int width) const
{
    if (m_boardSize.isEmpty()) {
        return 0;
    }
    const double fitting = std::clamp(width / m_boardSize.width(), LeastUnit, MostUnit);
    return static_cast<int>(std::ceil(fitting * m_boardSize.height()));
}

double KeyboardDrawing::unit() const
{
    return std::min({width() / m_boardSize.width(), height() / m_boardSize.height(), MostUnit});
}

QPointF KeyboardDrawing::origin() const
{
    const QSizeF board = m_boardSize * unit();
    return {(width() - board.width()) / 2, (height() - board.height()) / 2};
}

QRectF KeyboardDrawing::toWidget(const QRectF& area) const
{
    return {origin() + area.topLeft() * unit(), area.size() * unit()};
}

QRectF KeyboardDrawing::keyArea(int index) const
{
    return toWidget(m_keyboard.keys().at(index).area);
}

int KeyboardDrawing::keyAt(const QPointF& position) const
{
    return m_boardSize.isEmpty() ? -1 : m_keyboard.keyAt((position - origin()) / unit());
}

void KeyboardDrawing::keyPressEvent(QKeyEvent* event)
{
    using Direction = KeyboardLayout::Direction;
    static const QHash<int, Direction> directions{{Qt::Key_Left, Direction::Left},
                                                  {Qt::Key_Right, Direction::Right},
                                                  {Qt::Key_Up, Direction::Up},
                                                  {Qt::Key_Down, Direction::Down}};
    const auto direction = directions.constFind(event->key());
    if (direction == directions.constEnd() || m_keyboard.keys().isEmpty()) {
        return QWidget::keyPressEvent(event);
    }
    m_focused = m_keyboard.neighbour(m_focused, *direction);
    showFocused();
}

void KeyboardDrawing::showFocused()
{
    update();
    setAccessibleDescription(describe(m_focused));
    QToolTip::showText(mapToGlobal(keyArea(m_focused).bottomLeft().toPoint()), describe(m_focused),
                       this);
}

void KeyboardDrawing::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    const bool isByKey =
        event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (isByKey && !m_keyboard.keys().isEmpty()) {
        showFocused();
    }
}

void KeyboardDrawing::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    QToolTip::hideText();
    update();
}

void KeyboardDrawing::mouseMoveEvent(QMouseEvent* event)
{
    const int index = keyAt(event->position());
    if (index < 0) {
        QToolTip::hideText();
    } else {
        QToolTip::showText(event->globalPosition().toPoint(), describe(index), this);
    }
}

void KeyboardDrawing::mousePressEvent(QMouseEvent* event)
{
    const int index = keyAt(event->position());
    if (index >= 0) {
        m_focused = index;
        update();
    }
    QWidget::mousePressEvent(event);
}

void KeyboardDrawing::leaveEvent(QEvent* event)
{
    QToolTip::hideText();
    QWidget::leaveEvent(event);
}

KeyboardDrawing::Look KeyboardDrawing::look() const
{
    const double size = unit();
    const auto font = [](double pixels, double least, double most) {
        QFont result = Theme::font(Theme::TextSize::Caption);
        result.setPixelSize(static_cast<int>(std::lround(std::clamp(pixels, least, most))));
        return result;
    };
    constexpr double paddingShare = 0.1;
    Look look{.colours = Theme::colours(palette()),
              .character = font(size * 0.36, 10, 16),
              .word = font(size * 0.27, 8, 13),
              .count = font(size * 0.25, LeastCountText, 12),
              .showsCounts = false,
              .padding = std::max(2.0, size * paddingShare)};
    const QFontMetricsF metrics(look.count);
    look.showsCounts =
        metrics.horizontalAdvance(QStringLiteral("88.8K")) < size - 2 * look.padding &&
        metrics.height() + QFontMetricsF(look.character).height() < size - look.padding;
    return look;
}

QPainterPath KeyboardDrawing::capShape(const KeyboardKey& key) const
{
    const double gap = std::max(1.0, unit() * 0.05);
    const double corner = std::clamp(unit() * 0.14, 3.0, static_cast<double>(Theme::Corner));
    const auto part = [this, gap, corner](const QRectF& area) {
        QPainterPath path;
        path.addRoundedRect(toWidget(area).adjusted(gap, gap, -gap, -gap), corner, corner);
        return path;
    };
    const QPainterPath cap = part(key.area);
    return key.lower.isNull() ? cap : cap.united(part(key.lower)).simplified();
}

void KeyboardDrawing::paintKey(QPainter& painter, const KeyboardKey& key, const Look& look) const
{
    const qint64 count = key.isCounted() ? m_counts.value(key.key) : 0;
    const Theme::Colours& colours = look.colours;
    const QPainterPath shape = capShape(key);
    QColor text = colours.mutedText;
    if (count > 0) {
        const QColor fill = Ramp::quantity(m_scale.share(count), palette());
        painter.fillPath(shape, fill);
        text = Ramp::textOn(fill);
    } else {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(colours.hairline, 1, key.isCounted() ? Qt::SolidLine : Qt::DashLine));
        painter.drawPath(shape);
    }
    painter.setPen(text);
    paintText(painter, key, count > 0 ? Format::shortCount(count) : QString(), look);
}

void KeyboardDrawing::paintText(QPainter& painter, const KeyboardKey& key, const QString& count,
                                const Look& look) const
{
    const QRectF room =
        toWidget(key.area).adjusted(look.padding, look.padding, -look.padding, -look.padding);
    const QFont& font = key.legend.size() == 1 ? look.character : look.word;
    const QFontMetricsF metrics(font);
    const bool isTooLong =
        !key.shortLegend.isEmpty() && metrics.horizontalAdvance(key.legend) > room.width();
    const QString& legend = isTooLong ? key.shortLegend : key.legend;
    painter.setFont(font);
    if (!look.showsCounts) {
        painter.drawText(room, Qt::AlignCenter, legend);
        return;
    }
    // Legends stand on one line along a row, whatever their size.
    const double line = QFontMetricsF(look.character).height();
    painter.drawText(QRectF(room.topLeft(), QSizeF(room.width(), line)), Qt::AlignCenter, legend);
    painter.setFont(look.count);
    painter.drawText(room, Qt::AlignHCenter | Qt::AlignBottom, count);
}

void KeyboardDrawing::paintEvent(QPaintEvent*)
{
    if (m_keyboard.keys().isEmpty()) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Look shared = look();
    for (const KeyboardKey& key : m_keyboard.keys()) {
        paintKey(painter, key, shared);
    }
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(shared.colours.text, 2));
        painter.drawPath(capShape(m_keyboard.keys().at(m_focused)));
    }
}
