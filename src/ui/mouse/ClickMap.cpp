// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/mouse/ClickMap.h"

#include "base/Format.h"
#include "ui/Theme.h"
#include "ui/mouse/ClickImage.h"
#include "ui/mouse/ScreenPlaces.h"

#include <QKeyEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace {

constexpr QSize LeastSize(320, 200);
constexpr int BarHeight = 8;
constexpr int BarWidth = 240;
constexpr double Percent = 100;
constexpr double ScreenCorner = 4;
constexpr double Hair = 0.5; ///< Half a pixel, so that a line fills whole ones.

} // namespace

ClickMap::ClickMap(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("clickMap"));
    setMinimumSize(LeastSize);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
}

QSize ClickMap::sizeHint() const
{
    return 2 * LeastSize;
}

void ClickMap::setDensity(const ClickDensity& density, double aspect)
{
    m_density = density;
    m_aspect = aspect;
    m_scale = DensityScale(m_scale.form(), density.largest());
    setFocusPolicy(density.clicks() > 0 ? Qt::StrongFocus : Qt::NoFocus);
    colour();
    layOut();
    updateAccessibleText();
}

void ClickMap::setScale(DensityScale::Form form)
{
    m_scale = DensityScale(form, m_density.largest());
    colour();
}

void ClickMap::setEmptyText(const QString& text)
{
    m_emptyText = text;
    updateAccessibleText();
    update();
}

void ClickMap::colour()
{
    m_images.clear();
    for (const ClickDensity::Screen& screen : m_density.screens()) {
        m_images.append(ClickImage::of(screen, m_scale, palette()));
    }
    update();
}

void ClickMap::layOut()
{
    const QRectF bounds = m_density.bounds();
    const QSizeF shape(bounds.width() * m_aspect, bounds.height());
    const QRectF room(0, 0, width(), height() - legendHeight());
    m_area = QRectF({}, shape.scaled(room.size() - QSizeF(1, 1), Qt::KeepAspectRatio));
    m_area.moveCenter(room.center());
    m_area.moveTo(std::floor(m_area.x()), std::floor(m_area.y()));
}

int ClickMap::legendHeight() const
{
    return Theme::Gap + BarHeight + QFontMetrics(Theme::font(Theme::TextSize::Caption)).height();
}

QPointF ClickMap::toWidget(const QPointF& place) const
{
    const QRectF bounds = m_density.bounds();
    return {m_area.x() + (place.x() - bounds.x()) / bounds.width() * m_area.width(),
            m_area.y() + (place.y() - bounds.y()) / bounds.height() * m_area.height()};
}

QRectF ClickMap::placeOnWidget(const QRectF& place) const
{
    return {toWidget(place.topLeft()), toWidget(place.bottomRight())};
}

bool ClickMap::isOnScreen(const QPointF& place) const
{
    return std::any_of(
        m_density.screens().begin(), m_density.screens().end(),
        [&place](const ClickDensity::Screen& screen) { return screen.place.contains(place); });
}

QString ClickMap::describe(const QPointF& place) const
{
    if (!isOnScreen(place)) {
        return {};
    }
    const qint64 clicks = m_density.clicksNear(place);
    const double share =
        Percent * static_cast<double>(clicks) / static_cast<double>(m_density.clicks());
    return tr("Around here: %1 clicks, %2 %")
        .arg(Format::count(clicks), QLocale::c().toString(share, 'f', 1));
}

void ClickMap::updateAccessibleText()
{
    if (m_density.clicks() == 0) {
        setAccessibleDescription(m_emptyText);
        return;
    }
    QStringList lines{tr("%1 clicks. The table tells them by region; the arrow keys move over the "
                         "map.")
                          .arg(Format::count(m_density.clicks()))};
    if (m_spot) {
        lines.prepend(describe(*m_spot));
    }
    setAccessibleDescription(lines.join(QLatin1Char('\n')));
}

void ClickMap::showSpot(const std::optional<QPointF>& place)
{
    if (place != m_spot) {
        m_spot = place;
        update();
    }
}

void ClickMap::tell()
{
    const QPoint beside = toWidget(*m_spot).toPoint();
    QToolTip::showText(mapToGlobal(beside), describe(*m_spot), this);
}

bool ClickMap::event(QEvent* event)
{
    // The text follows the pointer as it moves; the delayed one would only repeat it.
    return event->type() == QEvent::ToolTip || QWidget::event(event);
}

void ClickMap::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        colour();
    }
    if (event->type() == QEvent::FontChange) {
        layOut();
    }
    QWidget::changeEvent(event);
}

void ClickMap::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layOut();
}

void ClickMap::mouseMoveEvent(QMouseEvent* event)
{
    const QRectF bounds = m_density.bounds();
    const QPointF inside = event->position() - m_area.topLeft();
    const QPointF place(bounds.x() + inside.x() / m_area.width() * bounds.width(),
                        bounds.y() + inside.y() / m_area.height() * bounds.height());
    if (m_density.clicks() > 0 && isOnScreen(place)) {
        showSpot(place);
        tell();
    } else {
        showSpot(std::nullopt);
        QToolTip::hideText();
    }
}

void ClickMap::leaveEvent(QEvent* event)
{
    showSpot(std::nullopt);
    QToolTip::hideText();
    QWidget::leaveEvent(event);
}

void ClickMap::focusOutEvent(QFocusEvent* event)
{
    showSpot(std::nullopt);
    QToolTip::hideText();
    QWidget::focusOutEvent(event);
}

void ClickMap::keyPressEvent(QKeyEvent* event)
{
    QPointF step;
    switch (event->key()) {
    case Qt::Key_Left:
        step = {-ClickDensity::NearCells / ClickCell::Columns, 0};
        break;
    case Qt::Key_Right:
        step = {ClickDensity::NearCells / ClickCell::Columns, 0};
        break;
    case Qt::Key_Up:
        step = {0, -ClickDensity::NearCells / ClickCell::Rows};
        break;
    case Qt::Key_Down:
        step = {0, ClickDensity::NearCells / ClickCell::Rows};
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    if (m_density.clicks() == 0) {
        return;
    }
    constexpr QPointF middle(0.5, 0.5);
    const QPointF place = m_spot ? *m_spot + step : middle;
    if (isOnScreen(place)) {
        showSpot(place);
        tell();
        updateAccessibleText();
    }
}

void ClickMap::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    if (m_density.clicks() == 0) {
        painter.setPen(Theme::colours(palette()).mutedText);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
        return;
    }
    paintScreens(painter);
    paintSpot(painter);
    paintLegend(painter);
}

void ClickMap::paintScreens(QPainter& painter) const
{
    const Theme::Colours colours = Theme::colours(palette());
    const QList<ClickDensity::Screen>& screens = m_density.screens();
    painter.setFont(Theme::font(Theme::TextSize::Caption));
    for (int i = 0; i < screens.size(); ++i) {
        const ClickDensity::Screen& screen = screens.at(i);
        const QRectF outline = placeOnWidget(screen.place).adjusted(Hair, Hair, Hair, Hair);
        QPainterPath shape;
        shape.addRoundedRect(outline, ScreenCorner, ScreenCorner);
        const QRectF cells(static_cast<double>(screen.firstCell.x()) / ClickCell::Columns,
                           static_cast<double>(screen.firstCell.y()) / ClickCell::Rows,
                           static_cast<double>(screen.size.width()) / ClickCell::Columns,
                           static_cast<double>(screen.size.height()) / ClickCell::Rows);
        painter.fillPath(shape, colours.page);
        painter.save();
        painter.setClipPath(shape);
        painter.drawImage(placeOnWidget(cells), m_images.at(i));
        painter.restore();
        painter.setPen(QPen(colours.mutedText, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(shape);
        if (screens.size() > 1) {
            paintName(painter, screen.place);
        }
    }
}

void ClickMap::paintName(QPainter& painter, const QRectF& place) const
{
    constexpr int half = Theme::Rhythm / 2;
    const Theme::Colours colours = Theme::colours(palette());
    const QString name = ScreenPlaces::name(place);
    const QSizeF size(painter.fontMetrics().horizontalAdvance(name) + 2 * half,
                      painter.fontMetrics().height());
    const QRectF label(toWidget(place.topLeft()) + QPointF(half, half), size);
    // On a ground of its own: the density below may have any colour.
    QColor ground = colours.card;
    constexpr float opacity = 0.85F;
    ground.setAlphaF(opacity);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(label, 2, 2);
    painter.setPen(colours.text);
    painter.drawText(label, Qt::AlignCenter, name);
}

void ClickMap::paintSpot(QPainter& painter) const
{
    if (!m_spot) {
        return;
    }
    const Theme::Colours colours = Theme::colours(palette());
    const QPointF radius = toWidget(*m_spot + QPointF(ClickDensity::NearCells / ClickCell::Columns,
                                                      ClickDensity::NearCells / ClickCell::Rows)) -
                           toWidget(*m_spot);
    // Two rings, so that one of them stands out from any colour of the map.
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colours.card, 3));
    painter.drawEllipse(toWidget(*m_spot), radius.x(), radius.y());
    painter.setPen(QPen(colours.text, 1));
    painter.drawEllipse(toWidget(*m_spot), radius.x(), radius.y());
}

void ClickMap::paintLegend(QPainter& painter) const
{
    const Theme::Colours colours = Theme::colours(palette());
    painter.setFont(Theme::font(Theme::TextSize::Caption));
    const QFontMetrics metrics = painter.fontMetrics();
    const int barWidth = std::min(BarWidth, width() / 2);
    const QRectF bar(width() - barWidth - 1, height() - metrics.height() - BarHeight, barWidth,
                     BarHeight);
    QLinearGradient gradient(bar.topLeft(), bar.topRight());
    constexpr int stops = 16;
    for (int stop = 0; stop <= stops; ++stop) {
        const double share = static_cast<double>(stop) / stops;
        gradient.setColorAt(share, ClickImage::colour(share, palette()));
    }
    painter.fillRect(bar, colours.page);
    painter.fillRect(bar, gradient);
    painter.setPen(colours.mutedText);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(bar.adjusted(-Hair, -Hair, Hair, Hair));

    for (const qint64 tick : m_scale.ticks()) {
        const QString text = Format::shortCount(tick);
        const double half = metrics.horizontalAdvance(text) / 2.0;
        const double middle = bar.left() + m_scale.share(static_cast<double>(tick)) * bar.width();
        const double left = std::clamp(middle - half, bar.left(), bar.right() - 2 * half);
        painter.drawText(QPointF(left, height() - metrics.descent()), text);
    }
    const QString name = m_scale.form() == DensityScale::Form::Linear
                             ? tr("Clicks per spot (1 % of the width), linear")
                             : tr("Clicks per spot (1 % of the width), logarithmic");
    const QRectF room(0, height() - legendHeight() + Theme::Rhythm, bar.left() - Theme::Gap,
                      legendHeight() - Theme::Rhythm);
    painter.drawText(room, Qt::AlignRight | Qt::AlignVCenter | Qt::TextWordWrap, name);
}
