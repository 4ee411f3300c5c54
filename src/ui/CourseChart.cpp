// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/CourseChart.h"

#include "ui/HourChart.h"
#include "ui/TimeChart.h"

#include <QDateTime>

CourseChart::CourseChart(QWidget* parent)
    : QStackedWidget(parent)
    , m_hours(new HourChart(this))
    , m_days(new TimeChart(this))
{
    setObjectName(QStringLiteral("courseChart"));
    addWidget(m_hours);
    addWidget(m_days);
    connect(m_days, &TimeChart::daysClicked, this, &CourseChart::daysClicked);
}

void CourseChart::setHours(const QDate& day, const Quantity& quantity,
                           const QHash<int, double>& values)
{
    m_hours->setDay(day, quantity, values, QDateTime::currentDateTime());
    m_hours->setAccessibleName(quantity.name);
    setCurrentWidget(m_hours);
}

void CourseChart::setDays(const QDate& first, const QDate& last, const Quantity& quantity,
                          const QMap<QDate, double>& values)
{
    m_days->setDays(first, last, quantity, {{.name = quantity.name, .values = values}});
    m_days->setAccessibleName(quantity.name);
    setCurrentWidget(m_days);
}

TimeStep CourseChart::step() const
{
    return m_days->step();
}
