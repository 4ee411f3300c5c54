// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/Quantity.h"

#include <QDate>
#include <QMap>
#include <QWidget>

/// One month as a sheet of a calendar: a row to a week, each day in the colour of its value, with a
/// legend below. A click on a day, or Enter where the arrow keys are, chooses it; Page Up and Page
/// Down ask for the months around. Days to come cannot be chosen. Thread: main.
class CalendarMonth : public QWidget
{
    Q_OBJECT

public:
    /// `weekStart` is the day of the first column.
    explicit CalendarMonth(Qt::DayOfWeek weekStart, QWidget* parent = nullptr);

    /// Shows the month of `month`. Days that `values` lacks have none; days after `today` are still
    /// to come.
    void setMonth(const QDate& month, const QMap<QDate, double>& values, const Quantity& quantity,
                  const QDate& today);

    /// Frames the days that the page is about.
    void setSelected(const QDate& first, const QDate& last);

    QSize sizeHint() const override;

Q_SIGNALS:
    void dayClicked(const QDate& day);

    /// The user wants the month that is so many after the one shown.
    void monthStepped(int months);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Where everything lies, by the size there is.
    struct Geometry
    {
        double lineHeight = 0; ///< Of captions.
        QRectF days;           ///< Seven columns, six rows.
        double columnWidth = 0;
        double rowHeight = 0;
    };

    Geometry sheet() const;
    QRectF dayArea(const QDate& day) const;
    QDate dayAt(const QPointF& position) const;
    int indexOf(const QDate& day) const;

    bool isChoosable(const QDate& day) const { return day.isValid() && day <= m_today; }

    QString describe(const QDate& day) const;
    QString summary() const;
    void moveTo(const QDate& day);
    void choose(const QDate& day);
    void showTip(const QDate& day, const QPoint& globalPosition);
    void paintWeekdays(QPainter& painter) const;
    void paintDay(QPainter& painter, const QDate& day) const;
    void paintLegend(QPainter& painter) const;

    QDate m_month; ///< Its first day.
    Qt::DayOfWeek m_weekStart;
    QDate m_today;
    QMap<QDate, double> m_values;
    Quantity m_quantity;
    double m_largest = 0;
    QDate m_selectedFirst;
    QDate m_selectedLast;
    QDate m_hovered; ///< Null where no day is.
    QDate m_pressed;
    QDate m_current; ///< Where the arrow keys are.
};
