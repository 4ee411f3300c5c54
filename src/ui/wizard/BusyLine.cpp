// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wizard/BusyLine.h"

#include "ui/Theme.h"

#include <QPainter>
#include <QStyle>

namespace {

constexpr int Height = 3;
constexpr int StepMs = 40;
constexpr int Steps = 50; ///< From one end to the other.

} // namespace

BusyLine::BusyLine(QWidget* parent)
    : QWidget(parent)
{
    setFixedHeight(Height);
    setObjectName(QStringLiteral("busyLine"));
    setAccessibleName(tr("Waiting"));
    m_step.setInterval(StepMs);
    connect(&m_step, &QTimer::timeout, this, [this] {
        m_position = (m_position + 1) % (2 * Steps);
        update();
    });
}

void BusyLine::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (style()->styleHint(QStyle::SH_Widget_Animate, nullptr, this) != 0) {
        m_step.start();
    }
}

void BusyLine::hideEvent(QHideEvent* event)
{
    m_step.stop();
    QWidget::hideEvent(event);
}

void BusyLine::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const Theme::Colours colours = Theme::colours(palette());
    const int mark = width() / 4;
    const int step = m_position < Steps ? m_position : 2 * Steps - m_position; // There and back.
    painter.fillRect(rect(), colours.track);
    painter.fillRect((width() - mark) * step / Steps, 0, mark, Height, colours.accent);
}
