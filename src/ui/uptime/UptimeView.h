// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/FigureTiles.h"
#include "ui/View.h"
#include "ui/uptime/SessionPlan.h"

class CourseChart;
class FiguresModel;
class SessionTimeline;

/// How long the machine was on: totals, its sessions on a time line, and the hours that it was on
/// over time. Thread: main.
class UptimeView : public View
{
    Q_OBJECT

public:
    explicit UptimeView(ViewContext context, QWidget* parent = nullptr);

protected:
    void refresh() override;
    Notice::Content emptyNotice() const override;

private:
    struct Answer
    {
        QDate first; ///< Of the days shown; null where there are none.
        QDate last;
        QList<DayTotals> days;
        QList<HourTotals> hours; ///< Where one day was asked for.
        bool isOneDay = false;
        SessionPlan plan;
    };

    static std::optional<Answer> read(History& history, const HistoryScope& scope);

    void addTotals();
    void addTimeline();
    void addCourse();
    static Place timelinePlace(const SessionPlan& plan);
    bool showAnswer(const Answer& answer);
    void showTotals(const Answer& answer);
    static FigureTiles::Tile longestSession(const QList<BootSession>& sessions);
    void showSessions(const SessionPlan& plan);
    void showCourse(const Answer& answer);

    FiguresModel* m_sessions;
    FiguresModel* m_course;
    FigureTiles* m_tiles = nullptr;
    Card* m_timelineCard = nullptr;
    SessionTimeline* m_timeline = nullptr;
    CourseChart* m_chart = nullptr;
};
