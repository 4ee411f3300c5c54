// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/View.h"
#include "ui/applications/ApplicationMeasure.h"
#include "ui/applications/ApplicationSeries.h"

class ApplicationLooks;
class ApplicationsModel;
class ApplicationsTable;
class Card;
class ExcludedButton;
class FiguresModel;
class QComboBox;
class TimeChart;

/// The applications of the chosen days: a table of all, and the selected ones over time, or the top
/// five where none is. Which are excluded from counting it is told; it only asks for changes.
/// Thread: main.
class ApplicationsView : public View
{
    Q_OBJECT

public:
    explicit ApplicationsView(ViewContext context, QWidget* parent = nullptr);

    /// Shows these applications, by path, as excluded from counting.
    void setExcluded(const QStringList& paths);

Q_SIGNALS:
    /// The user wants an application excluded from counting, or counted again; an exclusion was
    /// confirmed. What comes of it is told by `setExcluded`.
    void exclusionRequested(const QString& path, bool excluded);

protected:
    void refresh() override;
    Notice::Content emptyNotice() const override;

private:
    /// What the chart shows.
    struct Days
    {
        QDate first;
        QDate last;
        QList<QDate> counted; ///< On which anything was.
        QList<ApplicationDay> applications;
    };

    void buildTable();
    void buildChart();
    bool showApplications(const QList<ApplicationTotals>& applications);
    HistoryScope chartScope() const;
    ApplicationMeasure measure() const;
    static std::optional<Days> readDays(History& history, const HistoryScope& scope,
                                        const QStringList& paths);
    void askChart();
    void showChart(const Days& days);
    void showChartTable(const QList<ApplicationDay>& days);
    void describeChart(const Days& days);
    void confirmExclusion(const QStringList& paths);
    void includeAgain(const QStringList& paths);
    QString nameOf(const QString& path) const;

    ApplicationLooks* m_looks;
    ApplicationsModel* m_model;
    ApplicationsTable* m_table;
    ExcludedButton* m_excluded = nullptr;
    QList<ApplicationTotals> m_applications;
    ApplicationSeries::Choice m_charted;
    TimeChart* m_chart = nullptr;
    Card* m_chartCard = nullptr;
    QComboBox* m_measure = nullptr;
    FiguresModel* m_chartTable = nullptr;
    QString m_chartTableUnit; ///< Of lengths; empty until the first answer.
};
