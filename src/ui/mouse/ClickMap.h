// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/mouse/ClickDensity.h"
#include "ui/mouse/DensityScale.h"

#include <QImage>
#include <QWidget>

#include <optional>

/// Where on the screens was clicked: their outlines in place, and over them how densely. Hovering,
/// or moving a ring with the arrow keys, tells the clicks around a place. Thread: main.
class ClickMap : public QWidget
{
    Q_OBJECT

public:
    explicit ClickMap(QWidget* parent = nullptr);

    /// `aspect` is the width of the primary screen over its height.
    void setDensity(const ClickDensity& density, double aspect);

    void setScale(DensityScale::Form form);

    /// What stands where there are no clicks to draw.
    void setEmptyText(const QString& text);

    /// What hovering over a place tells; empty outside the screens.
    QString describe(const QPointF& place) const;

    /// Where a place, in sizes of the primary screen, lies on the widget.
    QPointF toWidget(const QPointF& place) const;

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void colour();
    void layOut();
    void updateAccessibleText();
    bool isOnScreen(const QPointF& place) const;
    void showSpot(const std::optional<QPointF>& place);
    void tell();
    int legendHeight() const;
    QRectF placeOnWidget(const QRectF& place) const;
    void paintScreens(QPainter& painter) const;
    void paintName(QPainter& painter, const QRectF& place) const;
    void paintSpot(QPainter& painter) const;
    void paintLegend(QPainter& painter) const;

    ClickDensity m_density;
    double m_aspect = 1;
    DensityScale m_scale;
    QString m_emptyText;
    QList<QImage> m_images; ///< Of the screens.
    QRectF m_area;          ///< The screens' bounds on the widget.
    std::optional<QPointF> m_spot;
};
