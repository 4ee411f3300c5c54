// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/View.h"
#include "ui/mouse/ClickDensity.h"

class CountsModel;
class CourseChart;
class ClickMap;
class FigureTiles;
class FiguresModel;
class ScrollCross;
class ShareBars;

/// What was done with the mouse: totals, where on the screens was clicked, with which buttons, how
/// the wheel turned, and the clicks over time. Thread: main.
class MouseView : public View
{
    Q_OBJECT

public:
    explicit MouseView(ViewContext context, QWidget* parent = nullptr);

protected:
    void refresh() override;
    Notice::Content emptyNotice() const override;

private:
    struct Answer
    {
        HistoryScope scope;
        QList<DayTotals> days;
        QList<HourTotals> hours; ///< Where the scope is one day.
        QList<ButtonCount> buttons;
        QList<ScrollCount> scrolls;
        ClickDensity density;
    };

    static std::optional<Answer> read(History& history, const HistoryScope& scope,
                                      const QList<QRectF>& screens);

    void addTotals();
    void addMap();
    void addButtons();
    void addScrolls();
    void addCourse();
    bool showAnswer(const Answer& answer);
    void showTotals(const QList<DayTotals>& days);
    void showMap(const ClickDensity& density);
    void showButtons(const QList<ButtonCount>& buttons);
    void showScrolls(const QList<ScrollCount>& scrolls);
    void showCourse(const Answer& answer);
    QString missingPositions() const;

    CountsModel* m_regions;
    CountsModel* m_buttons;
    CountsModel* m_scrolls;
    FiguresModel* m_course;
    FigureTiles* m_tiles = nullptr;
    ClickMap* m_map = nullptr;
    Card* m_mapCard = nullptr;
    ShareBars* m_buttonBars = nullptr;
    ScrollCross* m_scrollCross = nullptr;
    CourseChart* m_chart = nullptr;
};
