// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/FigureTiles.h"
#include "ui/View.h"
#include "ui/uptime/SessionPlan.h"

class FiguresModel;
class SessionTimeline;
class TimeChart;

/// How long the machine was on: totals, its sessions on a time line, and the hours of each day.
/// Thread: main.
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
        SessionPlan plan;
    };

    static std::optional<Answer> read(History& history, const HistoryScope& scope);

    void addTotals();
    void addTimeline();
    void addDays();
    bool showAnswer(const Answer& answer);
    void showTotals(const Answer& answer);
    static FigureTiles::Tile longestSession(const QList<BootSession>& sessions);
    void showSessions(const SessionPlan& plan);
    void showDays(const Answer& answer);

    FiguresModel* m_sessions;
    FiguresModel* m_days;
    FigureTiles* m_tiles = nullptr;
    SessionTimeline* m_timeline = nullptr;
    TimeChart* m_chart = nullptr;
};
