// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ScaleLegend.h"

#include "base/Format.h"
#include "ui/Ramp.h"
#include "ui/Theme.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int BarWidth = 160;
constexpr int BarHeight = 8;
constexpr int Steps = 32;
constexpr qint64 LeastParted = 4; ///< Below, the count in the middle would be one of the ends.

} // namespace

ScaleLegend::ScaleLegend(QString unit, QWidget* parent)
    : QWidget(parent)
    , m_unit(std::move(unit))
    , m_textOf(&Format::shortCount)
{
    setFont(Theme::font(Theme::TextSize::Caption));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(tr("Colour scale"));
}

void ScaleLegend::setTextOf(QString (*textOf)(qint64 count))
{
    m_textOf = textOf;
    updateGeometry();
    update();
}

void ScaleLegend::setScale(const QuantityScale& scale)
{
    if (scale == m_scale) {
        return;
    }
    const QSize size = sizeHint();
    m_scale = scale;
    setAccessibleDescription(tr("%1, up to %2").arg(caption(), m_textOf(scale.largest())));
    if (sizeHint() != size) {
        updateGeometry();
    }
    update();
}

QString ScaleLegend::caption() const
{
    return m_scale.form() == QuantityScale::Form::Linear ? tr("%1, linear").arg(m_unit)
                                                         : tr("%1, logarithmic").arg(m_unit);
}

QSize ScaleLegend::sizeHint() const
{
    // The last count stands under the end of the bar, half of it beyond.
    const int overhang = std::max(fontMetrics().horizontalAdvance(QStringLiteral("88.8K")),
                                  fontMetrics().horizontalAdvance(m_textOf(m_scale.largest()))) /
                         2;
    return {barLeft() + BarWidth + overhang, BarHeight + fontMetrics().height()};
}

int ScaleLegend::barLeft() const
{
    // Half of the first count stands left of the bar, and none of it under the caption.
    const int half = fontMetrics().horizontalAdvance(m_textOf(m_scale.countAt(0))) / 2;
    return fontMetrics().horizontalAdvance(caption()) +
           std::max(static_cast<int>(Theme::Gap), half + Theme::Rhythm);
}

QSize ScaleLegend::minimumSizeHint() const
{
    return sizeHint();
}

void ScaleLegend::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(Theme::font(Theme::TextSize::Caption));
    }
    QWidget::changeEvent(event);
}

void ScaleLegend::paintBar(QPainter& painter, const QRectF& bar) const
{
    QLinearGradient gradient(bar.topLeft(), bar.topRight());
    for (int step = 0; step <= Steps; ++step) {
        const double share = static_cast<double>(step) / Steps;
        gradient.setColorAt(share, Ramp::quantity(share, palette()));
    }
    painter.fillRect(bar, gradient);
}

void ScaleLegend::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(Theme::colours(palette()).mutedText);
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignTop, caption());
    const QRectF bar(barLeft(), (fontMetrics().height() - BarHeight) / 2.0 - 2, BarWidth,
                     BarHeight);
    paintBar(painter, bar);
    for (const double share : {0.0, 0.5, 1.0}) {
        const bool isMiddle = share > 0 && share < 1;
        const qint64 least = isMiddle ? LeastParted : 1;
        if (share > 0 && m_scale.largest() < least) {
            continue;
        }
        const QRectF place(bar.left() + bar.width() * share - BarWidth / 2.0, bar.bottom(),
                           BarWidth, fontMetrics().height());
        painter.drawText(place, Qt::AlignHCenter | Qt::AlignTop, m_textOf(m_scale.countAt(share)));
    }
}
