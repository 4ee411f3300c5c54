// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/DateRange.h"

#include <QList>
#include <QWidget>

class QPushButton;
class QToolButton;

/// Selects the days that the views show, and leads back to those selected before. Thread: main.
class RangeControl : public QWidget
{
    Q_OBJECT

public:
    explicit RangeControl(QWidget* parent = nullptr);

    const DateRange& range() const { return m_range; }

    /// Selects a range; the one before stays one step back.
    void select(const DateRange& range);

    /// Back to the range before; does nothing where there is none.
    void goBack();

Q_SIGNALS:
    void rangeChanged(const DateRange& range);

private:
    void buildMenu();
    void chooseDays();
    void setRange(const DateRange& range);

    DateRange m_range;
    QList<DateRange> m_before; ///< The last few, oldest first.
    QToolButton* m_back;
    QPushButton* m_button;
};
