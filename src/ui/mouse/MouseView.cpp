// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/mouse/MouseView.h"

#include "base/Format.h"
#include "storage/Settings.h"
#include "ui/Card.h"
#include "ui/CountsModel.h"
#include "ui/CourseChart.h"
#include "ui/FigureTiles.h"
#include "ui/FiguresModel.h"
#include "ui/mouse/ClickMap.h"
#include "ui/mouse/ScreenPlaces.h"
#include "ui/mouse/ScrollCross.h"
#include "ui/mouse/ShareBars.h"

#include <QCheckBox>

#include <algorithm>
#include <array>

namespace {

constexpr int TileCount = 5;
constexpr int MonthsKept = 3; ///< Of click positions and of each button's clicks.

Format::Lengths lengths()
{
    return Format::lengths(Settings::instance().value(SettingsKeys::MouseDistanceSystem));
}

bool isPruned()
{
    return Settings::instance().value(SettingsKeys::StatMouseHeatmapPrune3Months);
}

qint64 steps(const QList<ScrollCount>& scrolls, Utils::ScrollDirection direction)
{
    qint64 sum = 0;
    for (const ScrollCount& scroll : scrolls) {
        sum += scroll.direction == static_cast<int>(direction) ? scroll.count : 0;
    }
    return sum;
}

} // namespace

MouseView::MouseView(ViewContext context, QWidget* parent)
    : View(std::move(context), QStringLiteral("mouseView"), tr("Mouse"), parent)
    , m_regions(new CountsModel(tr("Region"), tr("Clicks"), CountsModel::Shares::Shown, this))
    , m_buttons(new CountsModel(tr("Button"), tr("Clicks"), CountsModel::Shares::Shown, this))
    , m_scrolls(new CountsModel(tr("Direction"), tr("Steps"), CountsModel::Shares::Shown, this))
{
    const auto ofLength = [](const QVariant& raw) {
        return Format::length(raw.toDouble(), lengths());
    };
    m_course = new FiguresModel({FiguresModel::timeColumn(tr("Time")),
                                 FiguresModel::countColumn(tr("Clicks")),
                                 FiguresModel::countColumn(tr("Scroll steps")),
                                 {.header = tr("Travel"), .text = ofLength}},
                                this);
    addTotals();
    addMap();
    addButtons();
    addScrolls();
    addCourse();
}

void MouseView::addTotals()
{
    m_tiles = new FigureTiles(TileCount);
    auto* card =
        addCard(new Card(QStringLiteral("mouseTotals"), tr("Totals"), m_tiles, m_tiles->model()),
                {.row = 0, .stretch = 0, .narrowHeight = 0});
    card->setTableOrder(CountsModel::NoColumn, Qt::AscendingOrder);
}

void MouseView::addMap()
{
    m_map = new ClickMap;
    m_mapCard = addCard(
        new Card(QStringLiteral("clickMap"), tr("Where you click"), m_map, m_regions),
        {.row = 1, .column = 0, .span = 4, .height = 276, .stretch = 3, .narrowHeight = 400});
    auto* logarithmic = new QCheckBox(tr("Logarithmic"));
    logarithmic->setObjectName(QStringLiteral("logarithmic"));
    logarithmic->setChecked(true);
    logarithmic->setToolTip(tr("Logarithmic also shows places with few clicks; linear, only "
                               "those with most."));
    connect(logarithmic, &QCheckBox::toggled, m_map, [this](bool isOn) {
        m_map->setScale(isOn ? DensityScale::Form::Logarithmic : DensityScale::Form::Linear);
    });
    m_mapCard->setControl(logarithmic);
}

void MouseView::addButtons()
{
    m_buttonBars = new ShareBars(m_buttons);
    auto* card =
        addCard(new Card(QStringLiteral("mouseButtons"), tr("Buttons"), m_buttonBars, m_buttons),
                {.row = 1, .column = 4, .span = 2, .stretch = 3, .narrowHeight = 0});
    card->setExplanation(isPruned() ? tr("Kept for three months") : QString());
}

void MouseView::addScrolls()
{
    m_scrollCross = new ScrollCross;
    auto* card = addCard(
        new Card(QStringLiteral("scrolls"), tr("Scrolling"), m_scrollCross, m_scrolls),
        {.row = 2, .column = 0, .span = 2, .height = 212, .stretch = 2, .narrowHeight = 264});
    card->setExplanation(tr("Steps by direction"));
}

void MouseView::addCourse()
{
    m_chart = new CourseChart;
    auto* card = addCard(
        new Card(QStringLiteral("clicksOverTime"), tr("Clicks over time"), m_chart, m_course),
        {.row = 2, .column = 2, .span = 4, .height = 212, .stretch = 2});
    card->setTableOrder(0, Qt::DescendingOrder);
    connect(m_chart, &CourseChart::daysClicked, this, &View::daysRequested);
}

std::optional<MouseView::Answer> MouseView::read(History& history, const HistoryScope& scope,
                                                 const QList<QRectF>& screens)
{
    const auto days = history.days(scope);
    const auto hours = scope.isOneDay() ? history.hours(scope) : QList<HourTotals>();
    const auto buttons = history.buttons(scope);
    const auto scrolls = history.scrolls(scope);
    const auto cells = history.clickCells(scope);
    if (!days || !hours || !buttons || !scrolls || !cells) {
        return std::nullopt;
    }
    return Answer{.scope = scope,
                  .days = *days,
                  .hours = *hours,
                  .buttons = *buttons,
                  .scrolls = *scrolls,
                  .density = ClickDensity(*cells, screens)};
}

void MouseView::refresh()
{
    ask<Answer>([asked = scope(), screens = ScreenPlaces::present()](
                    History& history) { return read(history, asked, screens); },
                [this](const Answer& answer) { return showAnswer(answer); });
}

bool MouseView::showAnswer(const Answer& answer)
{
    showTotals(answer.days);
    showMap(answer.density);
    showButtons(answer.buttons);
    showScrolls(answer.scrolls);
    showCourse(answer);
    return std::any_of(answer.days.begin(), answer.days.end(), [](const DayTotals& day) {
        return day.totals.clicks > 0 || day.totals.scrolls > 0 || day.totals.inches > 0;
    });
}

void MouseView::showTotals(const QList<DayTotals>& days)
{
    Totals sum;
    qint64 daysMoved = 0;
    DayTotals longest;
    for (const DayTotals& day : days) {
        sum += day.totals;
        daysMoved += day.totals.inches > 0 ? 1 : 0;
        if (day.totals.inches > longest.totals.inches) {
            longest = day;
        }
    }
    constexpr qint64 largestInFull = 999'999;
    const auto count = [](const QString& caption, qint64 number) {
        return FigureTiles::Tile{.caption = caption,
                                 .figure = number <= largestInFull ? Format::count(number)
                                                                   : Format::shortCount(number),
                                 .note = {},
                                 .inFull = Format::count(number)};
    };
    const auto travel = [](const QString& caption, double inches, const QString& note) {
        return FigureTiles::Tile{.caption = caption,
                                 .figure = Format::length(inches, lengths()),
                                 .note = note,
                                 .inFull = {}};
    };
    QList<FigureTiles::Tile> tiles{count(tr("Clicks"), sum.clicks),
                                   count(tr("Scroll steps"), sum.scrolls),
                                   travel(tr("Travel"), sum.inches, {})};
    if (daysMoved > 1) {
        const double mean = sum.inches / static_cast<double>(daysMoved);
        tiles.append(travel(tr("Travel per day"), mean,
                            tr("Mean of %1 days").arg(Format::count(daysMoved))));
        tiles.append(travel(tr("Longest day"), longest.totals.inches, Format::day(longest.day)));
    }
    m_tiles->setTiles(tiles);
}

QString MouseView::missingPositions() const
{
    if (!Settings::instance().value(SettingsKeys::StatMouseHeatmapEnable)) {
        return tr("Click positions are not kept: this is switched off in the settings.");
    }
    const bool areGone = isPruned() && scope().last < QDate::currentDate().addMonths(-MonthsKept);
    return areGone ? tr("Click positions are kept for three months. These days are older.")
                   : tr("The places you click on appear here.");
}

void MouseView::showMap(const ClickDensity& density)
{
    static const std::array<QString, 9> names{tr("Top left"),    tr("Top"),    tr("Top right"),
                                              tr("Left"),        tr("Middle"), tr("Right"),
                                              tr("Bottom left"), tr("Bottom"), tr("Bottom right")};
    m_map->setEmptyText(missingPositions());
    m_map->setDensity(density, ScreenPlaces::aspect());
    const bool severalScreens = density.screens().size() > 1;
    QList<CountsModel::Row> rows;
    for (const ClickDensity::Region& region : density.regions()) {
        const int place = region.row * 3 + region.column;
        const QString& name = names.at(static_cast<size_t>(place));
        rows.append({.label = severalScreens
                                  ? tr("%1, %2").arg(ScreenPlaces::name(region.screen), name)
                                  : name,
                     .toolTip = {},
                     .count = region.clicks});
    }
    m_regions->setRows(rows);
    QStringList remarks;
    if (isPruned()) {
        remarks.append(tr("Click positions are kept for three months."));
    }
    if (ScreenPlaces::present().size() > std::max<qsizetype>(1, density.screens().size())) {
        remarks.append(tr("Clicks on screens not drawn here lie on the main one."));
    }
    m_mapCard->setExplanation(remarks.join(QLatin1Char(' ')));
}

void MouseView::showButtons(const QList<ButtonCount>& buttons)
{
    const std::array<std::pair<int, QString>, 4> known{
        {{0, tr("Left")}, {1, tr("Right")}, {2, tr("Middle")}, {99, tr("Other")}}};
    QList<CountsModel::Row> rows;
    for (const auto& [button, name] : known) {
        const auto found =
            std::find_if(buttons.begin(), buttons.end(), [button = button](const ButtonCount& one) {
                return one.button == button;
            });
        rows.append(
            {.label = name, .toolTip = {}, .count = found != buttons.end() ? found->count : 0});
    }
    m_buttonBars->setEmptyText(tr("The clicks of each button appear here. They are kept for three "
                                  "months."));
    m_buttons->setRows(rows);
}

void MouseView::showScrolls(const QList<ScrollCount>& scrolls)
{
    using Direction = Utils::ScrollDirection;
    QHash<Direction, qint64> byDirection;
    QList<CountsModel::Row> rows;
    for (const Direction direction :
         {Direction::Up, Direction::Down, Direction::Left, Direction::Right}) {
        byDirection.insert(direction, steps(scrolls, direction));
        rows.append({.label = ScrollCross::name(direction),
                     .toolTip = {},
                     .count = byDirection.value(direction)});
    }
    m_scrollCross->setSteps(byDirection);
    m_scrolls->setRows(rows);
}

void MouseView::showCourse(const Answer& answer)
{
    const auto row = [](const QVariant& time, const Totals& totals) {
        return FiguresModel::Row{time, totals.clicks, totals.scrolls, totals.inches};
    };
    const Quantity clicks{.name = tr("Clicks")};
    QList<FiguresModel::Row> rows;
    if (answer.scope.isOneDay()) {
        QHash<int, double> byHour;
        for (const HourTotals& hour : answer.hours) {
            rows.append(row(hour.hour, hour.totals));
            byHour.insert(hour.hour, static_cast<double>(hour.totals.clicks));
        }
        m_chart->setHours(answer.scope.last, clicks, byHour);
    } else if (!answer.days.isEmpty()) {
        QMap<QDate, double> byDay;
        for (const DayTotals& day : answer.days) {
            rows.append(row(day.day, day.totals));
            byDay.insert(day.day, static_cast<double>(day.totals.clicks));
        }
        const QDate first =
            answer.scope.first.isValid() ? answer.scope.first : answer.days.constFirst().day;
        m_chart->setDays(first, answer.scope.last, clicks, byDay);
    }
    m_course->setRows(rows);
}

Notice::Content MouseView::emptyNotice() const
{
    return {.icon = QStringLiteral("mouse"),
            .title = tr("The mouse was not used on these days"),
            .text = tr("Clicks, scrolling and pointer travel appear here a few seconds after they "
                       "are made. Choose other days or another profile above."),
            .command = {},
            .button = {}};
}
