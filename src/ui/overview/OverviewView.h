// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/FigureTile.h"
#include "ui/View.h"
#include "ui/overview/OverviewFigures.h"

#include <array>

class CalendarMonth;
class CountsModel;
class CourseChart;
class FigureRow;
class FiguresModel;
class QComboBox;
class QToolButton;

/// The first page: the figures of the days and what they compare with, their course, the month as
/// a calendar, what was used most, and what is not yet sent to an account. Thread: main.
class OverviewView : public View
{
    Q_OBJECT

public:
    explicit OverviewView(ViewContext context, QWidget* parent = nullptr);

    /// Shows what is being done right now, where it is not zero and is counted.
    void setRates(double keysPerSecond, double clicksPerSecond);

protected:
    void refresh() override;
    Notice::Content emptyNotice() const override;
    bool keepsCards() const override;

private:
    void buildModels();
    void buildFigures();
    void buildChart();
    void buildCalendar();
    void buildLists();

    bool display(const OverviewFigures& figures);
    void showFigures();
    void showChart();
    void showMonth();
    void showLists();
    void stepMonth(int months);
    void setMeasure(int index);
    void updateUnits();
    DaySpan shownDays() const;
    QString daysTitle() const;
    QList<FigureTile::Line> comparisons(Measure measure) const;
    QString comparisonWords(const Baseline& baseline, Measure measure, const QTime& time) const;

    OverviewFigures m_figures;
    HistoryScope m_scope; ///< Of `m_figures`.
    QDate m_wantedMonth;  ///< Its first day; null until the scope tells.
    QTime m_shownTime;    ///< To the minute, that the figures are compared at.
    Measure m_measure = Measure::Keys;
    std::optional<Format::Lengths> m_lengths; ///< That the tables are in.

    FiguresModel* m_totalsTable = nullptr;
    FiguresModel* m_courseTable = nullptr;
    FiguresModel* m_monthTable = nullptr;
    FiguresModel* m_unzurgedTable = nullptr;
    CountsModel* m_keys = nullptr;
    CountsModel* m_applications = nullptr;

    Card* m_figureCard = nullptr;
    std::array<FigureTile*, Measures::All.size()> m_tiles{};
    Card* m_courseCard = nullptr;
    CourseChart* m_course = nullptr;
    Card* m_monthCard = nullptr;
    CalendarMonth* m_calendar = nullptr;
    QToolButton* m_earlier = nullptr;
    QToolButton* m_later = nullptr;
};
