// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/BusyVeil.h"

#include "ui/Theme.h"

#include <QPainter>

namespace {

constexpr int DelayMs = 50;
constexpr int LineHeight = 3;
constexpr int DimAlpha = 140;

} // namespace

BusyVeil::BusyVeil(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("busy"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    m_delay.setSingleShot(true);
    m_delay.setInterval(DelayMs);
    connect(&m_delay, &QTimer::timeout, this, &QWidget::show);
    hide();
}

void BusyVeil::begin()
{
    m_share = -1;
    if (isHidden()) {
        m_delay.start();
    }
    update();
}

void BusyVeil::showProgress(double share)
{
    m_delay.stop();
    m_share = share;
    setToolTip(tr("Summing your history: %1 %").arg(qRound(100 * share)));
    setAccessibleName(toolTip());
    show();
    update();
}

void BusyVeil::end()
{
    m_delay.stop();
    hide();
}

void BusyVeil::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const Theme::Colours colours = Theme::colours(palette());
    const bool isKnown = m_share >= 0;
    if (!isKnown) {
        QColor dim = colours.page;
        dim.setAlpha(DimAlpha);
        painter.fillRect(rect(), dim);
    }
    painter.fillRect(0, 0, width(), LineHeight, colours.track);
    painter.fillRect(0, 0, isKnown ? qRound(width() * m_share) : width() / 3, LineHeight,
                     colours.accent);
}
