// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/overview/OverviewView.h"

#include "base/KeyNames.h"
#include "storage/Settings.h"
#include "ui/Card.h"
#include "ui/CountsModel.h"
#include "ui/CourseChart.h"
#include "ui/FigureRow.h"
#include "ui/FiguresModel.h"
#include "ui/Icons.h"
#include "ui/QueryWorker.h"
#include "ui/RankingView.h"
#include "ui/Theme.h"
#include "ui/history/History.h"
#include "ui/overview/BaselineText.h"
#include "ui/overview/CalendarMonth.h"
#include "ui/overview/OverviewTables.h"
#include "ui/overview/UnzurgedPanel.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLocale>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 LargestInFull = 999'999;
constexpr int MostComparisons = 2;

QDate monthOf(const QDate& day)
{
    return {day.year(), day.month(), 1};
}

QTime toMinute(const QTime& time)
{
    return {time.hour(), time.minute()};
}

/// A value where there is little room for it.
QString shortText(const Quantity& quantity, double value)
{
    const bool isLong = quantity.kind == Quantity::Kind::Count && value > LargestInFull;
    return isLong ? Format::shortCount(std::llround(value)) : quantity.text(value);
}

QString rateText(double perSecond)
{
    constexpr double least = 0.05; // Would read "0.0".
    return perSecond < least
               ? QString()
               : QStringLiteral("%1/s").arg(
                     QLocale(QLocale::English, QLocale::UnitedStates).toString(perSecond, 'f', 1));
}

} // namespace

OverviewView::OverviewView(ViewContext context, QWidget* parent)
    : View(std::move(context), QStringLiteral("overviewView"), tr("Overview"), parent)
{
    buildModels();
    buildFigures();
    buildChart();
    buildCalendar();
    buildLists();
}

void OverviewView::buildModels()
{
    m_totalsTable = new FiguresModel({}, this);
    m_courseTable = new FiguresModel({}, this);
    m_monthTable = new FiguresModel({}, this);
    m_unzurgedTable = new FiguresModel({}, this);
    m_keys = new CountsModel(tr("Key"), tr("Keys"), CountsModel::Shares::Shown, this);
    m_applications =
        new CountsModel(tr("Application"), tr("Keys"), CountsModel::Shares::Shown, this);
}

void OverviewView::buildFigures()
{
    auto* row = new FigureRow(MostComparisons);
    for (size_t i = 0; i < m_tiles.size(); ++i) {
        m_tiles.at(i) = row->add(Measures::quantity(Measures::All.at(i), {}).name);
    }
    m_figureCard = addCard(new Card(QStringLiteral("figures"), tr("Figures"), row, m_totalsTable),
                           {.row = 0, .stretch = 0, .narrowHeight = 0});
    m_figureCard->setTableOrder(CountsModel::NoColumn, Qt::AscendingOrder);
}

void OverviewView::buildChart()
{
    m_course = new CourseChart;
    connect(m_course, &CourseChart::daysClicked, this, &View::daysRequested);
    auto* choice = new QComboBox;
    choice->setObjectName(QStringLiteral("measure"));
    choice->setAccessibleName(tr("What the chart and the calendar show"));
    choice->setToolTip(choice->accessibleName());
    for (const Measure measure : Measures::All) {
        choice->addItem(Measures::quantity(measure, {}).name);
    }
    connect(choice, &QComboBox::currentIndexChanged, this, &OverviewView::setMeasure);
    m_courseCard = addCard(new Card(QStringLiteral("course"), tr("Keys"), m_course, m_courseTable),
                           {.row = 1, .column = 0, .span = 4, .stretch = 3});
    m_courseCard->setControl(choice);
    m_courseCard->setTableOrder(0, Qt::AscendingOrder);
}

void OverviewView::buildCalendar()
{
    m_calendar = new CalendarMonth(QLocale::system().firstDayOfWeek());
    connect(m_calendar, &CalendarMonth::dayClicked, this,
            [this](const QDate& day) { Q_EMIT daysRequested(day, day); });
    connect(m_calendar, &CalendarMonth::monthStepped, this, &OverviewView::stepMonth);
    auto* arrows = new QWidget;
    auto* layout = new QHBoxLayout(arrows);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    const auto add = [this, arrows, layout](const QString& name, const QString& text, int months) {
        auto* button = new QToolButton(arrows);
        button->setObjectName(name);
        button->setIcon(Icons::symbol(name));
        button->setIconSize({Theme::Gap, Theme::Gap});
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::StrongFocus);
        button->setToolTip(text);
        button->setAccessibleName(text);
        layout->addWidget(button);
        connect(button, &QToolButton::clicked, this, [this, months] { stepMonth(months); });
        return button;
    };
    m_earlier = add(QStringLiteral("earlier"), tr("Month before"), -1);
    m_later = add(QStringLiteral("later"), tr("Month after"), 1);
    m_monthCard = addCard(new Card(QStringLiteral("month"), tr("Month"), m_calendar, m_monthTable),
                          {.row = 1, .column = 4, .span = 2, .stretch = 3});
    m_monthCard->setControl(arrows);
    m_monthCard->setTableOrder(0, Qt::AscendingOrder);
}

void OverviewView::buildLists()
{
    auto* keys = new RankingView(
        m_keys, tr("The keys you press appear here while each key is counted by itself."));
    addCard(new Card(QStringLiteral("mostUsedKeys"), tr("Most used keys"), keys, m_keys),
            {.row = 2, .column = 0, .span = 2, .stretch = 2, .narrowHeight = 232});
    auto* applications = new RankingView(
        m_applications,
        tr("The applications you type in appear here while input is counted per application."));
    addCard(new Card(QStringLiteral("mostUsedApplications"), tr("Most used applications"),
                     applications, m_applications),
            {.row = 2, .column = 2, .span = 2, .stretch = 2, .narrowHeight = 232});
    addCard(new Card(QStringLiteral("unzurged"), tr("Unzurged"), new UnzurgedPanel(m_unzurgedTable),
                     m_unzurgedTable),
            {.row = 2, .column = 4, .span = 2, .stretch = 2, .narrowHeight = 0})
        ->setTableOrder(CountsModel::NoColumn, Qt::AscendingOrder);
}

void OverviewView::setRates(double keysPerSecond, double clicksPerSecond)
{
    const bool isCounted = inputState() == InputState::Reading;
    const auto show = [this, isCounted](Measure measure, double perSecond) {
        m_tiles.at(static_cast<size_t>(measure))
            ->setRate(isCounted ? rateText(perSecond) : QString());
    };
    show(Measure::Keys, keysPerSecond);
    show(Measure::Clicks, clicksPerSecond);
}

void OverviewView::refresh()
{
    const QDate today = QDate::currentDate();
    if (scope() != m_scope || !m_wantedMonth.isValid()) {
        m_wantedMonth = monthOf(std::min(scope().last, today));
    } else if (m_figures.month.isValid() && toMinute(QTime::currentTime()) != m_shownTime) {
        // What is compared grows with the day, though nothing may have been written.
        showFigures();
        showChart();
    }
    ask<OverviewFigures>(
        [asked = scope(), today, month = m_wantedMonth](History& history) {
            return OverviewFigures::read(history, asked, today, month);
        },
        [this, asked = scope()](const OverviewFigures& figures) {
            m_scope = asked;
            return display(figures);
        });
}

Notice::Content OverviewView::emptyNotice() const
{
    if (!scope().isOneDay() || scope().last != QDate::currentDate()) {
        return View::emptyNotice();
    }
    return {.icon = QStringLiteral("today"),
            .title = tr("Nothing counted yet today"),
            .text = tr("As you work, this page shows your keys, clicks, scrolls, the way of your "
                       "pointer and the uptime of this computer, and compares them with earlier "
                       "days. Choose other days above to look back."),
            .command = {},
            .button = {}};
}

bool OverviewView::keepsCards() const
{
    // The calendar leads to other days, and what is not sent yet is of all days.
    return !m_figures.firstDay.isNull();
}

bool OverviewView::display(const OverviewFigures& figures)
{
    const bool isOtherMonth = figures.month != m_wantedMonth;
    const QDate month = m_figures.month;
    const QList<DayTotals> monthDays = m_figures.monthDays;
    m_figures = figures;
    if (isOtherMonth) {
        // Another one was asked for meanwhile, and has its own answer.
        m_figures.month = month;
        m_figures.monthDays = monthDays;
    }
    updateUnits();
    showFigures();
    showChart();
    showMonth();
    showLists();
    return !figures.totals.isEmpty();
}

void OverviewView::updateUnits()
{
    const Format::Lengths lengths =
        Format::lengths(Settings::instance().value(SettingsKeys::MouseDistanceSystem));
    if (lengths == m_lengths) {
        return;
    }
    m_lengths = lengths;
    m_totalsTable->setColumns(OverviewTables::columns(tr("Days"), lengths));
    m_courseTable->setColumns(OverviewTables::columns(tr("Time"), lengths));
    m_monthTable->setColumns(OverviewTables::columns(tr("Day"), lengths));
}

DaySpan OverviewView::shownDays() const
{
    const QDate first = m_scope.first.isNull() ? m_figures.firstDay : m_scope.first;
    return {first, std::max(first, std::min(m_scope.last, QDate::currentDate()))};
}

QString OverviewView::daysTitle() const
{
    const DaySpan days = shownDays();
    if (m_scope.first.isNull()) {
        return tr("Since %1").arg(Format::day(days.first));
    }
    if (!m_scope.isOneDay()) {
        return tr("%1 to %2").arg(Format::day(days.first), Format::day(days.last));
    }
    return days.last == QDate::currentDate() ? tr("Today") : Format::day(days.last);
}

QString OverviewView::comparisonWords(const Baseline& baseline, Measure measure,
                                      const QTime& time) const
{
    const Quantity quantity = Measures::quantity(measure, *m_lengths);
    const double before = baseline.value(measure, time);
    const Change change = Change::between(Measures::value(measure, m_figures.totals), before);
    QString words =
        tr("%1: %2").arg(change.words(BaselineText::words(baseline, time)), quantity.text(before));
    if (baseline.days.first < m_figures.firstDay) {
        words +=
            QLatin1Char('\n') + tr("Counting began on %1.").arg(Format::day(m_figures.firstDay));
    }
    if (baseline.isCut) {
        words +=
            QLatin1Char('\n') + tr("Of the present hour, as much is compared as has passed of it.");
    }
    return words;
}

QList<FigureTile::Line> OverviewView::comparisons(Measure measure) const
{
    const Quantity quantity = Measures::quantity(measure, *m_lengths);
    const double value = Measures::value(measure, m_figures.totals);
    QList<FigureTile::Line> comparisons;
    for (const Baseline& baseline : m_figures.baselines) {
        comparisons.append(
            {.lead = Change::between(value, baseline.value(measure, m_shownTime)).text(),
             .text = BaselineText::caption(baseline),
             .inFull = comparisonWords(baseline, measure, m_shownTime)});
    }
    const qsizetype days = m_figures.days.size();
    if (!m_scope.isOneDay() && days > 0) {
        const double mean = value / static_cast<double>(days);
        comparisons.append({.lead = shortText(quantity, mean),
                            .text = tr("a day"),
                            .inFull = tr("%1 on a mean day (days counted: %2)")
                                          .arg(quantity.text(mean), Format::count(days))});
    }
    return comparisons;
}

void OverviewView::showFigures()
{
    m_shownTime = toMinute(QTime::currentTime());
    for (size_t i = 0; i < m_tiles.size(); ++i) {
        const Measure measure = Measures::All.at(i);
        const Quantity quantity = Measures::quantity(measure, *m_lengths);
        const double value = Measures::value(measure, m_figures.totals);
        m_tiles.at(i)->setFigure(shortText(quantity, value), quantity.text(value));
        m_tiles.at(i)->setLines(comparisons(measure));
    }
    m_figureCard->setTitle(daysTitle());
    m_totalsTable->setRows(OverviewTables::totals(daysTitle(), m_figures, m_shownTime, *m_lengths));
}

void OverviewView::showChart()
{
    const Quantity quantity = Measures::quantity(m_measure, *m_lengths);
    if (m_scope.isOneDay()) {
        QHash<int, double> values;
        for (const HourTotals& hour : std::as_const(m_figures.hours)) {
            values.insert(hour.hour, Measures::value(m_measure, hour.totals));
        }
        m_course->setHours(m_scope.last, quantity, values);
        m_courseCard->setTitle(tr("%1, hour by hour").arg(quantity.name));
        m_courseTable->setRows(OverviewTables::hours(m_figures.hours, *m_lengths));
        return;
    }
    QMap<QDate, double> values;
    for (const DayTotals& day : std::as_const(m_figures.days)) {
        values.insert(day.day, Measures::value(m_measure, day.totals));
    }
    const DaySpan days = shownDays();
    if (days.first.isValid()) {
        m_course->setDays(days.first, days.last, quantity, values);
    }
    const QString title = m_course->step() == TimeStep::Day    ? tr("%1, day by day")
                          : m_course->step() == TimeStep::Week ? tr("%1, week by week")
                                                               : tr("%1, month by month");
    m_courseCard->setTitle(title.arg(quantity.name));
    m_courseTable->setRows(OverviewTables::days(m_figures.days, *m_lengths));
}

void OverviewView::showMonth()
{
    QMap<QDate, double> values;
    for (const DayTotals& day : std::as_const(m_figures.monthDays)) {
        values.insert(day.day, Measures::value(m_measure, day.totals));
    }
    const QDate today = QDate::currentDate();
    m_calendar->setMonth(m_figures.month, values, Measures::quantity(m_measure, *m_lengths), today);
    m_calendar->setSelected(m_scope.first, m_scope.last);
    m_monthCard->setTitle(QLocale(QLocale::English, QLocale::UnitedStates)
                              .toString(m_figures.month, QStringLiteral("MMMM yyyy")));
    m_monthTable->setRows(OverviewTables::days(m_figures.monthDays, *m_lengths));
    m_earlier->setEnabled(m_figures.month > m_figures.firstDay);
    m_later->setEnabled(m_figures.month < monthOf(today));
}

void OverviewView::showLists()
{
    QList<CountsModel::Row> keys;
    for (const KeyCount& count : std::as_const(m_figures.keys)) {
        keys.append({.label = KeyNames::text(count.key), .toolTip = {}, .count = count.count});
    }
    m_keys->setRows(keys);
    QList<CountsModel::Row> applications;
    for (const ApplicationTotals& one : std::as_const(m_figures.applications)) {
        if (one.keys > 0) {
            applications.append(
                {.label = applicationName(one.path), .toolTip = one.path, .count = one.keys});
        }
    }
    m_applications->setRows(applications);
}

void OverviewView::setMeasure(int index)
{
    m_measure = Measures::All.at(static_cast<size_t>(index));
    if (m_lengths) {
        showChart();
        showMonth();
    }
}

void OverviewView::stepMonth(int months)
{
    const QDate target = m_wantedMonth.addMonths(months);
    if (target < monthOf(m_figures.firstDay) || target > monthOf(QDate::currentDate())) {
        return;
    }
    m_wantedMonth = target;
    context().worker->ask<QList<DayTotals>>(
        objectName() + QStringLiteral("/month"), this,
        [target, profileId = scope().profileId](History& history) {
            return OverviewFigures::readMonth(history, target, profileId);
        },
        [this, target](const std::optional<QList<DayTotals>>& days) {
            if (days && target == m_wantedMonth) {
                m_figures.month = target;
                m_figures.monthDays = *days;
                showMonth();
            }
        });
}
