// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/uptime/UptimeView.h"

#include "base/Format.h"
#include "ui/Card.h"
#include "ui/CountsModel.h"
#include "ui/CourseChart.h"
#include "ui/FiguresModel.h"
#include "ui/uptime/SessionText.h"
#include "ui/uptime/SessionTimeline.h"

#include <algorithm>

namespace {

constexpr int TileCount = 4;
constexpr qint64 MsPerSecond = 1000;
constexpr qint64 SecondsPerHour = 3600;

FiguresModel::Column momentColumn(const QString& header)
{
    return {.header = header,
            .text = [](const QVariant& raw) { return SessionText::moment(raw.toDateTime()); },
            .alignment = Qt::AlignLeft | Qt::AlignVCenter};
}

} // namespace

UptimeView::UptimeView(ViewContext context, QWidget* parent)
    : View(std::move(context), QStringLiteral("uptimeView"), tr("Uptime"), parent)
    , m_sessions(new FiguresModel({momentColumn(tr("Start")), momentColumn(tr("End")),
                                   FiguresModel::durationColumn(tr("Length")),
                                   FiguresModel::textColumn(tr("State"))},
                                  this))
    , m_course(new FiguresModel(
          {FiguresModel::timeColumn(tr("Time")), FiguresModel::durationColumn(tr("On"))}, this))
{
    addTotals();
    addTimeline();
    addCourse();
}

void UptimeView::addTotals()
{
    m_tiles = new FigureTiles(TileCount);
    auto* card =
        addCard(new Card(QStringLiteral("uptimeTotals"), tr("Totals"), m_tiles, m_tiles->model()),
                {.row = 0, .stretch = 0, .narrowHeight = 0});
    card->setTableOrder(CountsModel::NoColumn, Qt::AscendingOrder);
}

void UptimeView::addTimeline()
{
    m_timeline = new SessionTimeline;
    m_timeline->setEmptyText(tr("Each start of the computer appears here with the time until it "
                                "was switched off."));
    m_timelineCard = addCard(
        new Card(QStringLiteral("sessions"), tr("Boots and sessions"), m_timeline, m_sessions),
        timelinePlace(SessionPlan()));
    m_timelineCard->setExplanation(
        tr("From the boot to the last minute counted, time asleep included; of all profiles"));
    m_timelineCard->setTableOrder(0, Qt::DescendingOrder);
    connect(m_timeline, &SessionTimeline::daysClicked, this, &View::daysRequested);
}

void UptimeView::addCourse()
{
    m_chart = new CourseChart;
    auto* card = addCard(new Card(QStringLiteral("hoursOn"), tr("Hours on"), m_chart, m_course),
                         {.row = 2, .height = 224, .stretch = 2, .narrowHeight = 240});
    card->setExplanation(tr("Time counted while the computer was on and awake"));
    card->setTableOrder(0, Qt::DescendingOrder);
    connect(m_chart, &CourseChart::daysClicked, this, &View::daysRequested);
}

View::Place UptimeView::timelinePlace(const SessionPlan& plan)
{
    // Few rows take little, and a single one leaves what is spare to the hours.
    constexpr int leastHeight = 160;
    constexpr int rasterHeight = 276;
    constexpr int mostHeight = 360;
    constexpr int rowHeight = 22;
    constexpr int around = 120; // The title, the axis and the margins.
    const int height = plan.isRaster() ? rasterHeight
                                       : std::clamp(around + rowHeight * plan.laneCount(),
                                                    leastHeight, mostHeight);
    return {.row = 1,
            .height = height,
            .stretch = plan.laneCount() == 1 ? 0 : 3,
            .narrowHeight = height};
}

std::optional<UptimeView::Answer> UptimeView::read(History& history, const HistoryScope& scope)
{
    const auto days = history.days(scope);
    const auto hours = scope.isOneDay() ? history.hours(scope) : QList<HourTotals>();
    const auto boots = history.boots(scope);
    if (!days || !hours || !boots) {
        return std::nullopt;
    }
    Answer answer{.first = scope.first,
                  .last = scope.last,
                  .days = *days,
                  .hours = *hours,
                  .isOneDay = scope.isOneDay(),
                  .plan = {}};
    if (scope.first.isNull()) {
        // From the first day on which there is anything to see.
        if (!days->isEmpty()) {
            answer.first = days->constFirst().day;
        }
        if (!boots->isEmpty()) {
            const QDate boot = boots->constFirst().start.date();
            answer.first = answer.first.isNull() ? boot : std::min(answer.first, boot);
        }
    }
    if (!answer.first.isNull()) {
        answer.plan = SessionPlan(*boots, answer.first, answer.last);
    }
    return answer;
}

void UptimeView::refresh()
{
    ask<Answer>([asked = scope()](History& history) { return read(history, asked); },
                [this](const Answer& answer) { return showAnswer(answer); });
}

bool UptimeView::showAnswer(const Answer& answer)
{
    showTotals(answer);
    showSessions(answer.plan);
    showCourse(answer);
    return !answer.plan.sessions().isEmpty() ||
           std::any_of(answer.days.begin(), answer.days.end(),
                       [](const DayTotals& day) { return day.totals.uptimeMs > 0; });
}

void UptimeView::showTotals(const Answer& answer)
{
    qint64 seconds = 0;
    qint64 daysOn = 0;
    for (const DayTotals& day : answer.days) {
        seconds += day.totals.uptimeMs / MsPerSecond;
        daysOn += day.totals.uptimeMs > 0 ? 1 : 0;
    }
    const auto boots = std::count_if(
        answer.plan.sessions().begin(), answer.plan.sessions().end(),
        [&answer](const BootSession& session) { return session.start.date() >= answer.first; });
    QList<FigureTiles::Tile> tiles{
        {.caption = tr("Time on"),
         .figure = Format::duration(seconds),
         .note = tr("Without time asleep"),
         .inFull = tr("%1 h").arg(Format::count(seconds / SecondsPerHour))},
        longestSession(answer.plan.sessions()),
        {.caption = tr("Boots"), .figure = Format::count(boots), .note = {}, .inFull = {}}};
    if (daysOn > 1) {
        tiles.append({.caption = tr("Time on per day"),
                      .figure = Format::duration(seconds / daysOn),
                      .note = tr("Mean of %1 days").arg(Format::count(daysOn)),
                      .inFull = {}});
    }
    m_tiles->setTiles(tiles);
}

FigureTiles::Tile UptimeView::longestSession(const QList<BootSession>& sessions)
{
    FigureTiles::Tile tile{
        .caption = tr("Longest session"), .figure = Format::duration(0), .note = {}, .inFull = {}};
    const QDateTime now = QDateTime::currentDateTime();
    qint64 longest = -1;
    for (const BootSession& session : sessions) {
        const qint64 seconds = session.start.secsTo(session.end);
        if (seconds > longest) {
            longest = seconds;
            const QString day = Format::day(session.start.date());
            tile.figure = Format::duration(seconds);
            tile.note = SessionDays::isRunning(session, now) ? tr("Going on since %1").arg(day)
                                                             : tr("From %1").arg(day);
            tile.inFull = SessionText::span(session);
        }
    }
    return tile;
}

void UptimeView::showSessions(const SessionPlan& plan)
{
    const QDateTime now = QDateTime::currentDateTime();
    QList<FiguresModel::Row> rows;
    for (const BootSession& session : plan.sessions()) {
        rows.append({session.start, session.end, session.start.secsTo(session.end),
                     SessionDays::isRunning(session, now) ? tr("Going on") : tr("Ended")});
    }
    m_sessions->setRows(rows);
    m_timeline->setPlan(plan);
    setPlace(m_timelineCard, timelinePlace(plan));
}

void UptimeView::showCourse(const Answer& answer)
{
    const Quantity quantity{.name = tr("Time on"), .kind = Quantity::Kind::Duration};
    QList<FiguresModel::Row> rows;
    if (answer.isOneDay) {
        QHash<int, double> byHour;
        for (const HourTotals& hour : answer.hours) {
            const qint64 seconds = hour.totals.uptimeMs / MsPerSecond;
            if (seconds > 0) {
                rows.append({hour.hour, seconds});
                byHour.insert(hour.hour, static_cast<double>(seconds));
            }
        }
        m_chart->setHours(answer.last, quantity, byHour);
    } else if (answer.first.isValid()) {
        QMap<QDate, double> byDay;
        for (const DayTotals& day : answer.days) {
            const qint64 seconds = day.totals.uptimeMs / MsPerSecond;
            if (seconds > 0) {
                rows.append({day.day, seconds});
                byDay.insert(day.day, static_cast<double>(seconds));
            }
        }
        m_chart->setDays(answer.first, answer.last, quantity, byDay);
    }
    m_course->setRows(rows);
}

Notice::Content UptimeView::emptyNotice() const
{
    return {.icon = QStringLiteral("uptime"),
            .title = tr("No uptime was counted on these days"),
            .text = tr("Sessions and the hours of each day appear here within a minute of the "
                       "program's start. Choose other days above."),
            .command = {},
            .button = {}};
}
