// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/SideBarButton.h"

#include "ui/Theme.h"

#include <QFocusEvent>
#include <QPainter>

namespace {

constexpr int Height = 40;
constexpr int IconSize = 20;

} // namespace

SideBarButton::SideBarButton(QWidget* parent)
    : QAbstractButton(parent)
{
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setIconSize({IconSize, IconSize});
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize SideBarButton::sizeHint() const
{
    return {Height, Height};
}

void SideBarButton::focusInEvent(QFocusEvent* event)
{
    // A window that comes back gives the focus back as it was.
    if (event->reason() != Qt::ActiveWindowFocusReason) {
        m_focusByKey =
            event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    }
    QAbstractButton::focusInEvent(event);
}

void SideBarButton::paintEvent(QPaintEvent*)
{
    const Theme::Colours colours = Theme::colours(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr qreal halfPixel = 0.5;
    const QRectF ground = QRectF(rect()).adjusted(halfPixel, halfPixel, -halfPixel, -halfPixel);
    if (isChecked() || underMouse() || isDown()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isChecked() ? colours.hairline : colours.track);
        painter.drawRoundedRect(ground, Theme::Corner, Theme::Corner);
    }
    if (isChecked()) {
        constexpr int markWidth = 3;
        painter.setPen(Qt::NoPen);
        painter.setBrush(colours.accent);
        painter.drawRoundedRect(QRectF(0, height() / 4.0, markWidth, height() / 2.0), 1, 1);
    }
    if (hasFocus() && m_focusByKey) {
        painter.setPen(QPen(colours.accent, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(ground, Theme::Corner, Theme::Corner);
    }
    const int margin = (Height - IconSize) / 2;
    icon().paint(&painter, margin, margin, IconSize, IconSize);
    const int textStart = 2 * margin + IconSize;
    if (width() > 2 * Height) {
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(QRect(textStart, 0, width() - textStart, height()),
                         Qt::AlignVCenter | Qt::AlignLeft, text());
    }
}
