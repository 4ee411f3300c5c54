// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/HourSlots.h"

#include <QChartView>
#include <QHash>

QT_BEGIN_NAMESPACE
class QBarSet;
class QCategoryAxis;
class QValueAxis;
QT_END_NAMESPACE

/// The keys of each hour of one day as bars from zero. Hovering over an hour tells its exact count.
/// Thread: main.
class HourChart : public QChartView
{
    Q_OBJECT

public:
    explicit HourChart(QWidget* parent = nullptr);

    /// `keys` by hour; an hour it lacks has none. Bars of an hour that comes twice on that day each
    /// show half of its count, since the two are stored as one.
    void setDay(const QDate& day, const QHash<int, qint64>& keys);

protected:
    void changeEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void buildAxes();
    void setSlots(const QList<HourSlot>& hours);
    void setTop(qint64 largest);
    void applyTheme();
    QString describe(int slot) const;
    void updateAccessibleText();

    QBarSet* m_set;
    QCategoryAxis* m_hourAxis;
    QValueAxis* m_keyAxis;
    QDate m_day;
    QList<HourSlot> m_hours;
    QHash<int, qint64> m_keys;
};
