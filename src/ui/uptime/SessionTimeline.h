// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/uptime/SessionPlan.h"
#include "ui/uptime/TimelineLayout.h"

#include <QImage>
#include <QWidget>

/// When the machine was on: a row to each day with its sessions as bars, or, from a month and a
/// half on, a column to each day or to some, which leaves years readable. Hovering tells a session;
/// a click, or Enter where the arrow keys are, asks for its days. Thread: main.
class SessionTimeline : public QWidget
{
    Q_OBJECT

public:
    explicit SessionTimeline(QWidget* parent = nullptr);

    void setPlan(const SessionPlan& plan);

    /// What stands where there are no sessions.
    void setEmptyText(const QString& text);

    /// What hovering over a place tells; empty where there is nothing to tell.
    QString describe(const QPointF& place) const;

    const TimelineLayout& timelineLayout() const { return m_layout; }

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The user chose these days.
    void daysClicked(const QDate& first, const QDate& last);

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void colour();
    void layOut();
    void moveTo(int lane);
    void choose(int lane);
    void updateAccessibleText();

    SessionPlan m_plan;
    QString m_emptyText;
    QImage m_image; ///< Of the raster.
    TimelineLayout m_layout;
    int m_hovered = -1;
    int m_current = -1; ///< The lane that the arrow keys are on.
};
