// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/network/WorldMap.h"

#include "base/Format.h"
#include "ui/Ramp.h"
#include "ui/ScaleLegend.h"
#include "ui/Theme.h"
#include "ui/network/CountryNames.h"
#include "ui/network/WorldShapes.h"

#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int LeastWidth = 320;
constexpr double DotSize = 7;  ///< Pixels; a country that is smaller both ways is drawn as a dot.
constexpr double DotReach = 6; ///< From its middle, for the mouse.
constexpr quint64 LeastSpan = 10; ///< The most traffic over where the scale begins.
constexpr quint64 LargestSpan = 1'000'000;
constexpr double LeastRinged = 8; ///< Pixels; around smaller islands a ring would be a blot.

const WorldShapes::Country& country(qsizetype shape)
{
    return WorldShapes::instance().countries().at(shape);
}

QString bytesText(qint64 bytes)
{
    return Format::bytes(static_cast<quint64>(bytes));
}

/// Up to the most traffic, from a tenth of the least: were it from the least itself, that would be
/// hard to tell from none.
QuantityScale scaleOf(quint64 least, quint64 most)
{
    const quint64 from = std::clamp(least / LeastSpan, most / LargestSpan, most / LeastSpan);
    return {static_cast<qint64>(most), QuantityScale::Form::Logarithmic, static_cast<qint64>(from)};
}

double extent(const QPolygonF& piece)
{
    const QRectF bounds = piece.boundingRect();
    return std::max(bounds.width(), bounds.height());
}

bool isNarrower(const QPolygonF& piece, const QPolygonF& other)
{
    return extent(piece) < extent(other);
}

} // namespace

WorldMap::WorldMap(QWidget* parent)
    : QWidget(parent)
    , m_legend(new ScaleLegend(tr("Traffic"), this))
{
    setObjectName(QStringLiteral("worldMap"));
    setAccessibleName(tr("World map of traffic"));
    setMouseTracking(true);
    setFont(Theme::font(Theme::TextSize::Caption));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    m_legend->setTextOf(&bytesText);
    setValues({});
}

void WorldMap::setValues(const QList<CountryValue>& values)
{
    m_placed.clear();
    m_elsewhere.clear();
    for (const CountryValue& value : values) {
        const qsizetype shape = WorldShapes::instance().indexOf(value.code);
        if (value.total() == 0) {
            continue;
        }
        if (shape >= 0) {
            m_placed.append({value, shape});
        } else {
            m_elsewhere.append(value);
        }
    }
    std::stable_sort(m_placed.begin(), m_placed.end(), [](const Placed& one, const Placed& other) {
        return one.value.total() > other.value.total();
    });
    std::stable_sort(m_elsewhere.begin(), m_elsewhere.end(),
                     [](const CountryValue& one, const CountryValue& other) {
                         return one.total() > other.total();
                     });
    m_scale = m_placed.isEmpty() ? QuantityScale()
                                 : scaleOf(m_placed.constLast().value.total(),
                                           m_placed.constFirst().value.total());
    m_legend->setScale(m_scale);
    m_legend->setVisible(!m_placed.isEmpty());
    setFocusPolicy(m_placed.isEmpty() ? Qt::NoFocus : Qt::StrongFocus);
    if (rankOf(m_focused) < 0) {
        m_focused = m_placed.isEmpty() ? QString() : m_placed.constFirst().value.code;
    }
    updateAccessibleText();
    layOut();
}

void WorldMap::setEmptyText(const QString& text)
{
    m_emptyText = text;
    updateAccessibleText();
    update();
}

qsizetype WorldMap::rankOf(const QString& code) const
{
    const auto placed = std::find_if(m_placed.begin(), m_placed.end(),
                                     [&code](const Placed& one) { return one.value.code == code; });
    return placed == m_placed.end() ? -1 : placed - m_placed.begin();
}

QSize WorldMap::minimumSizeHint() const
{
    return {LeastWidth, sizeHint().height() / 2};
}

QSize WorldMap::sizeHint() const
{
    const QSizeF sheet = WorldShapes::instance().size();
    const double height = 2 * LeastWidth * sheet.height() / std::max(sheet.width(), 1.0);
    return {2 * LeastWidth, static_cast<int>(height) + footerHeight()};
}

int WorldMap::footerHeight() const
{
    const QString elsewhere = elsewhereText();
    const int room = width() - m_legend->sizeHint().width() - Theme::Gap;
    const bool isBeside = elsewhere.isEmpty() || fontMetrics().horizontalAdvance(elsewhere) <= room;
    return Theme::Rhythm + m_legend->sizeHint().height() + (isBeside ? 0 : fontMetrics().height());
}

void WorldMap::layOut()
{
    const QSizeF sheet = WorldShapes::instance().size();
    const QRectF room(0, 0, width(), height() - footerHeight());
    QRectF area({}, sheet.scaled(room.size(), Qt::KeepAspectRatio));
    area.moveCenter(room.center());
    m_toWidget = QTransform::fromTranslate(area.x(), area.y());
    if (!sheet.isEmpty() && !area.isEmpty()) {
        const double scale = area.width() / sheet.width();
        m_toWidget.scale(scale, scale);
    }
    const QSize legend = m_legend->sizeHint();
    m_legend->setGeometry(0, height() - legend.height(), legend.width(), legend.height());
    m_picture = {};
    update();
}

bool WorldMap::isDot(qsizetype shape) const
{
    const QRectF bounds = m_toWidget.mapRect(country(shape).outline.controlPointRect());
    return bounds.width() < DotSize && bounds.height() < DotSize;
}

QPointF WorldMap::middleOf(qsizetype shape) const
{
    return m_toWidget.map(country(shape).middle);
}

QPointF WorldMap::middleOf(const QString& code) const
{
    const qsizetype shape = WorldShapes::instance().indexOf(code);
    return shape < 0 ? QPointF() : middleOf(shape);
}

QString WorldMap::countryAt(const QPointF& position) const
{
    // The dots lie over the outlines, that of more traffic over that of less.
    for (const Placed& placed : m_placed) {
        const QPointF away = middleOf(placed.shape) - position;
        if (isDot(placed.shape) && std::hypot(away.x(), away.y()) <= DotReach) {
            return placed.value.code;
        }
    }
    const QPointF onSheet = m_toWidget.inverted().map(position);
    for (const WorldShapes::Country& one : WorldShapes::instance().countries()) {
        if (one.outline.controlPointRect().contains(onSheet) && one.outline.contains(onSheet)) {
            return one.code;
        }
    }
    return {};
}

QString WorldMap::describe(const QString& code) const
{
    const qsizetype rank = rankOf(code);
    if (rank < 0) {
        return tr("%1: no traffic").arg(countryName(code));
    }
    const CountryValue& value = m_placed.at(rank).value;
    return tr("%1: %2 down, %3 up")
        .arg(countryName(code), Format::bytes(value.download), Format::bytes(value.upload));
}

QString WorldMap::elsewhereText() const
{
    QStringList parts;
    for (const CountryValue& value : m_elsewhere) {
        parts += tr("%1 %2").arg(countryName(value.code), Format::bytes(value.total()));
    }
    return parts.isEmpty() ? QString() : tr("Not on the map: %1").arg(parts.join(tr(", ")));
}

void WorldMap::updateAccessibleText()
{
    setAccessibleDescription(m_placed.isEmpty() ? m_emptyText : describe(m_focused));
}

void WorldMap::setHovered(const QString& code)
{
    if (code != m_hovered) {
        m_hovered = code;
        update();
    }
}

void WorldMap::moveTo(qsizetype rank)
{
    const Placed& placed = m_placed.at(std::clamp<qsizetype>(rank, 0, m_placed.size() - 1));
    m_focused = placed.value.code;
    updateAccessibleText();
    QToolTip::showText(mapToGlobal(middleOf(placed.shape).toPoint()), describe(m_focused), this);
    update();
}

bool WorldMap::event(QEvent* event)
{
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(Theme::font(Theme::TextSize::Caption));
        layOut();
    }
    return QWidget::event(event);
}

void WorldMap::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        m_picture = {};
    }
    QWidget::changeEvent(event);
}

void WorldMap::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layOut();
}

void WorldMap::keyPressEvent(QKeyEvent* event)
{
    if (m_placed.isEmpty()) {
        return QWidget::keyPressEvent(event);
    }
    switch (event->key()) {
    case Qt::Key_Right:
    case Qt::Key_Down:
        return moveTo(rankOf(m_focused) + 1);
    case Qt::Key_Left:
    case Qt::Key_Up:
        return moveTo(rankOf(m_focused) - 1);
    case Qt::Key_Home:
        return moveTo(0);
    case Qt::Key_End:
        return moveTo(m_placed.size() - 1);
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        Q_EMIT countryClicked(m_focused);
        return;
    default:
        return QWidget::keyPressEvent(event);
    }
}

void WorldMap::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    const bool isByKey =
        event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (isByKey && !m_placed.isEmpty()) {
        moveTo(rankOf(m_focused));
    }
    update();
}

void WorldMap::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    QToolTip::hideText();
    update();
}

void WorldMap::mouseMoveEvent(QMouseEvent* event)
{
    const QString code = countryAt(event->position());
    setHovered(code);
    if (code.isEmpty()) {
        QToolTip::hideText();
    } else {
        QToolTip::showText(event->globalPosition().toPoint(), describe(code), this);
    }
}

void WorldMap::mousePressEvent(QMouseEvent* event)
{
    m_pressed = event->button() == Qt::LeftButton ? countryAt(event->position()) : QString();
    if (m_pressed.isEmpty()) {
        QWidget::mousePressEvent(event);
    }
}

void WorldMap::mouseReleaseEvent(QMouseEvent* event)
{
    const QString code = std::exchange(m_pressed, {});
    if (event->button() != Qt::LeftButton || code.isEmpty() ||
        countryAt(event->position()) != code) {
        return QWidget::mouseReleaseEvent(event);
    }
    if (rankOf(code) >= 0) {
        m_focused = code;
        updateAccessibleText();
        update();
    }
    Q_EMIT countryClicked(code);
}

void WorldMap::leaveEvent(QEvent* event)
{
    QToolTip::hideText();
    setHovered({});
    QWidget::leaveEvent(event);
}

QColor WorldMap::colourOf(const Placed& placed) const
{
    return Ramp::quantity(m_scale.share(static_cast<qint64>(placed.value.total())), palette());
}

void WorldMap::paintDots(QPainter& painter) const
{
    painter.setPen(QPen(Theme::colours(palette()).card, 1));
    std::for_each(m_placed.crbegin(), m_placed.crend(), [&](const Placed& placed) {
        if (isDot(placed.shape)) {
            painter.setBrush(colourOf(placed));
            painter.drawEllipse(middleOf(placed.shape), DotSize / 2, DotSize / 2);
        }
    });
}

QPixmap WorldMap::picture() const
{
    QPixmap picture(size() * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(m_toWidget, true);
    const Theme::Colours colours = Theme::colours(palette());
    // One pixel of the device whatever the scale; a broader line takes four times as long.
    painter.setPen(QPen(colours.card, 0));
    QList<QColor> fills(WorldShapes::instance().countries().size(), colours.track);
    for (const Placed& placed : m_placed) {
        fills[placed.shape] = colourOf(placed);
    }
    for (qsizetype shape = 0; shape < fills.size(); ++shape) {
        painter.setBrush(fills.at(shape));
        painter.drawPath(country(shape).outline);
    }
    painter.resetTransform();
    paintDots(painter);
    return picture;
}

void WorldMap::paintRing(QPainter& painter, const QString& code, const QColor& colour,
                         double width) const
{
    const qsizetype shape = WorldShapes::instance().indexOf(code);
    if (shape < 0) {
        return;
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (isDot(shape)) {
        painter.drawEllipse(middleOf(shape), DotReach, DotReach);
        return;
    }
    const QList<QPolygonF> pieces = country(shape).outline.toSubpathPolygons(m_toWidget);
    const auto largest = std::max_element(pieces.begin(), pieces.end(), isNarrower);
    for (const QPolygonF& piece : pieces) {
        if (&piece == &*largest || extent(piece) >= LeastRinged) {
            painter.drawPolygon(piece);
        }
    }
}

void WorldMap::paintElsewhere(QPainter& painter) const
{
    const QString text = elsewhereText();
    if (text.isEmpty()) {
        return;
    }
    const QRect footer = rect().adjusted(0, height() - footerHeight() + Theme::Rhythm, 0, 0);
    painter.setPen(Theme::colours(palette()).mutedText);
    painter.drawText(footer, Qt::AlignRight | Qt::AlignTop,
                     fontMetrics().elidedText(text, Qt::ElideRight, width()));
}

void WorldMap::paintEvent(QPaintEvent*)
{
    if (m_picture.isNull() || m_picture.devicePixelRatioF() != devicePixelRatioF()) {
        m_picture = picture();
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawPixmap(0, 0, m_picture);
    paintElsewhere(painter);
    const Theme::Colours colours = Theme::colours(palette());
    if (m_placed.isEmpty() && m_elsewhere.isEmpty()) {
        painter.setPen(colours.mutedText);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
    }
    paintRing(painter, m_hovered, colours.text, 1);
    if (hasFocus()) {
        paintRing(painter, m_focused, colours.text, 1.5);
    }
}
