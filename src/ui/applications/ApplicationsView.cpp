// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/applications/ApplicationsView.h"

#include "base/Format.h"
#include "storage/Settings.h"
#include "ui/Card.h"
#include "ui/FiguresModel.h"
#include "ui/TimeChart.h"
#include "ui/applications/ApplicationLooks.h"
#include "ui/applications/ApplicationsModel.h"
#include "ui/applications/ApplicationsTable.h"
#include "ui/applications/ExcludedButton.h"
#include "ui/applications/ExclusionQuestion.h"

#include <QComboBox>

#include <utility>

namespace {

constexpr int ContextDays = 14; ///< Of the chart, where one day alone is chosen.

Format::Lengths userLengths()
{
    return Format::lengths(Settings::instance().value(SettingsKeys::MouseDistanceSystem));
}

Quantity quantityOf(ApplicationMeasure measure)
{
    switch (measure) {
    case ApplicationMeasure::FrontTime:
        return {.name = ApplicationsView::tr("Time in front"), .kind = Quantity::Kind::Duration};
    case ApplicationMeasure::Keys:
        return {.name = ApplicationsView::tr("Keys")};
    case ApplicationMeasure::Clicks:
        return {.name = ApplicationsView::tr("Clicks")};
    case ApplicationMeasure::Scrolls:
        return {.name = ApplicationsView::tr("Scrolls")};
    case ApplicationMeasure::Travel:
        return {.name = ApplicationsView::tr("Pointer travel"),
                .kind = Quantity::Kind::Length,
                .lengths = userLengths()};
    }
    Q_UNREACHABLE();
}

FiguresModel::Column lengthColumn(const QString& header)
{
    return {.header = header, .text = [](const QVariant& raw) {
                return QLocale(QLocale::English, QLocale::UnitedStates)
                    .toString(raw.toDouble(), 'f', 1);
            }};
}

} // namespace

ApplicationsView::ApplicationsView(ViewContext context, QWidget* parent)
    : View(std::move(context), QStringLiteral("applications"), tr("Applications"), parent)
    , m_looks(new ApplicationLooks(this->context(), this))
    , m_model(new ApplicationsModel(*m_looks, this))
    , m_table(new ApplicationsTable(*m_model, tr("Applications")))
{
    buildTable();
    buildChart();
}

void ApplicationsView::buildTable()
{
    auto* card =
        new Card(QStringLiteral("applicationList"), tr("All applications"), m_table, m_model);
    m_excluded =
        new ExcludedButton(tr("Excluded applications (%1)"),
                           tr("Applications that are no longer counted, to count them again"),
                           [this](const QString& path) { return nameOf(path); });
    card->setControl(m_excluded);
    connect(m_excluded, &ExcludedButton::inclusionWanted, this,
            [this](const QString& path) { includeAgain({path}); });
    connect(m_table, &ApplicationsTable::exclusionWanted, this,
            &ApplicationsView::confirmExclusion);
    connect(m_table, &ApplicationsTable::inclusionWanted, this, &ApplicationsView::includeAgain);
    connect(m_table, &ApplicationsTable::selectionChanged, this, &ApplicationsView::askChart);
    addCard(card, {.row = 0, .height = 288, .stretch = 3, .narrowHeight = 288});
}

void ApplicationsView::buildChart()
{
    m_chart = new TimeChart;
    m_chartTable = new FiguresModel({}, this);
    m_measure = new QComboBox;
    m_measure->setObjectName(QStringLiteral("measure"));
    m_measure->setAccessibleName(tr("What the chart compares"));
    for (const ApplicationMeasure measure : AllApplicationMeasures) {
        m_measure->addItem(quantityOf(measure).name);
    }
    m_chartCard =
        new Card(QStringLiteral("applicationsOverTime"), tr("Over time"), m_chart, m_chartTable);
    m_chartCard->setControl(m_measure);
    connect(m_measure, &QComboBox::currentIndexChanged, this, &ApplicationsView::askChart);
    connect(m_chart, &TimeChart::daysClicked, this, &View::daysRequested);
    addCard(m_chartCard, {.row = 1, .height = 208, .stretch = 2, .narrowHeight = 208});
}

Notice::Content ApplicationsView::emptyNotice() const
{
    return {.icon = QStringLiteral("applications"),
            .title = tr("No application was counted on these days"),
            .text = tr("The applications you use appear here, with what you typed and clicked in "
                       "each and how long it was in front. If none appears, choose other days or "
                       "another profile above."),
            .command = {},
            .button = {}};
}

void ApplicationsView::refresh()
{
    using Applications = QList<ApplicationTotals>;
    ask<Applications>(
        [days = scope()](History& history) { return history.applications(days); },
        [this](const Applications& applications) { return showApplications(applications); });
}

bool ApplicationsView::showApplications(const QList<ApplicationTotals>& applications)
{
    m_applications = applications;
    m_model->setLengths(userLengths());
    m_model->setApplications(applications);
    askChart();
    return !applications.isEmpty();
}

void ApplicationsView::setExcluded(const QStringList& paths)
{
    m_model->setExcluded(paths);
    m_excluded->setExcluded(paths);
}

ApplicationMeasure ApplicationsView::measure() const
{
    return AllApplicationMeasures.at(static_cast<size_t>(m_measure->currentIndex()));
}

HistoryScope ApplicationsView::chartScope() const
{
    HistoryScope days = scope();
    if (days.isOneDay()) {
        days.first = days.last.addDays(1 - ContextDays); // One day alone draws no line.
    }
    return days;
}

std::optional<ApplicationsView::Days>
ApplicationsView::readDays(History& history, const HistoryScope& scope, const QStringList& paths)
{
    const std::optional<QList<DayTotals>> counted = history.days(scope);
    std::optional<QList<ApplicationDay>> applications = history.applicationDays(scope, paths);
    if (!counted || !applications) {
        return std::nullopt;
    }
    Days days{.first = scope.first,
              .last = scope.last,
              .counted = {},
              .applications = std::move(*applications)};
    for (const DayTotals& day : *counted) {
        days.counted.append(day.day);
    }
    if (days.first.isNull()) {
        days.first = days.counted.isEmpty() ? days.last : days.counted.constFirst();
    }
    return days;
}

void ApplicationsView::askChart()
{
    m_charted =
        ApplicationSeries::choose(m_applications, m_table->selectedPaths(), measure(), m_charted);
    context().worker->ask<Days>(
        objectName() + QStringLiteral(".chart"), this,
        [days = chartScope(), paths = m_charted.own + m_charted.other](History& history) {
            return readDays(history, days, paths);
        },
        [this](const std::optional<Days>& days) {
            if (days) {
                showChart(*days);
            }
        });
}

void ApplicationsView::showChart(const Days& days)
{
    const auto name = [this](const QString& path) { return nameOf(path); };
    m_chart->setDays(days.first, days.last, quantityOf(measure()),
                     ApplicationSeries::series(m_charted, days.applications, days.counted,
                                               measure(), name, tr("Other")));
    showChartTable(days.applications);
    describeChart(days);
}

void ApplicationsView::showChartTable(const QList<ApplicationDay>& days)
{
    const Format::LengthUnit unit = tableUnit(userLengths());
    if (unit.name != m_chartTableUnit) {
        m_chartTableUnit = unit.name;
        m_chartTable->setColumns(
            {FiguresModel::textColumn(tr("Application")), FiguresModel::dayColumn(tr("Day")),
             FiguresModel::durationColumn(tr("Time in front")),
             FiguresModel::countColumn(tr("Keys")), FiguresModel::countColumn(tr("Clicks")),
             FiguresModel::countColumn(tr("Scrolls")),
             lengthColumn(tr("Pointer travel (%1)").arg(unit.name))});
    }
    QList<FiguresModel::Row> rows;
    for (const ApplicationDay& day : days) {
        rows.append({nameOf(day.path), day.day, day.frontSeconds, day.keys, day.clicks, day.scrolls,
                     day.inches / unit.inches});
    }
    m_chartTable->setRows(rows);
}

void ApplicationsView::describeChart(const Days& days)
{
    const QString span = tr("%1 to %2").arg(Format::day(days.first), Format::day(days.last));
    const QStringList selected = m_table->selectedPaths();
    const QString shown = selected.isEmpty()     ? tr("top applications")
                          : selected.size() == 1 ? nameOf(selected.constFirst())
                                                 : tr("selected applications");
    m_chartCard->setTitle(
        tr("%1: %2", "A measure, and applications").arg(quantityOf(measure()).name, shown));
    m_chartCard->setExplanation(
        selected.isEmpty() ? tr("%1. Select rows above to compare others.").arg(span) : span);
}

QString ApplicationsView::nameOf(const QString& path) const
{
    const int row = m_model->rowOf(path);
    return row >= 0 ? m_model->name(row) : m_looks->name(path, {});
}

void ApplicationsView::confirmExclusion(const QStringList& paths)
{
    ExclusionQuestion::ask(this, paths.size(), nameOf(paths.constFirst()), [this, paths] {
        for (const QString& path : paths) {
            Q_EMIT exclusionRequested(path, true);
        }
    });
}

void ApplicationsView::includeAgain(const QStringList& paths)
{
    for (const QString& path : paths) {
        Q_EMIT exclusionRequested(path, false);
    }
}
