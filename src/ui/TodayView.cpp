// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TodayView.h"

#include "base/Format.h"
#include "base/KeyNames.h"
#include "ui/Card.h"
#include "ui/CountsModel.h"
#include "ui/FigurePanel.h"
#include "ui/HourChart.h"
#include "ui/Notice.h"
#include "ui/QueryWorker.h"
#include "ui/RankingView.h"
#include "ui/Theme.h"
#include "ui/TodayNotice.h"
#include "ui/history/History.h"

#include <QApplication>
#include <QFileInfo>
#include <QGridLayout>
#include <QScrollArea>

#include <algorithm>
#include <array>

namespace {

constexpr int RefreshMs = 1000;
constexpr int RetryMs = 30'000; ///< After a failure, each of which stands in the log.
constexpr int LoneNoticeWidth = 576;
constexpr int FactsShown = 6;
constexpr int FactsShownLow = 3;
constexpr int CardHeightInOneColumn = 288;
constexpr int TwoColumnsFrom = 760; ///< Pixels that the view is wide in a window of 1000.

enum CardIndex
{
    FigureCard,
    HoursCard,
    KeysCard,
    ApplicationsCard,
};

} // namespace

TodayView::TodayView(QueryWorker& worker, ApplicationName applicationName, QWidget* parent)
    : QWidget(parent)
    , m_worker(worker)
    , m_applicationName(std::move(applicationName))
    , m_notice(new Notice)
    , m_cards(new QWidget)
    , m_grid(new QGridLayout(m_cards))
{
    setObjectName(QStringLiteral("todayView"));
    setAccessibleName(tr("Today"));
    buildModels();
    buildCards();

    auto* page = new QWidget;
    m_pageLayout = new QVBoxLayout(page);
    m_pageLayout->setContentsMargins(Theme::Gap, 0, Theme::Gap, Theme::Gap);
    m_pageLayout->setSpacing(Theme::Gap);
    m_pageLayout->addWidget(m_notice);
    m_pageLayout->addWidget(m_cards, 1);
    auto* scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("scroll"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(page);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroll);

    connect(m_notice, &Notice::buttonPressed, this, &TodayView::keyboardCountingRequested);
    connect(&m_refresh, &QTimer::timeout, this, &TodayView::refresh);
    m_refresh.setInterval(RefreshMs);
    // Until the first answer neither figures nor their absence can be told.
    m_notice->hide();
    m_cards->hide();
}

void TodayView::buildModels()
{
    const auto make = [this](const QString& label, CountsModel::Shares shares) {
        return new CountsModel(label, tr("Keys"), shares, this);
    };
    m_facts = new CountsModel(tr("Today"), tr("Count"), CountsModel::Shares::None, this);
    m_hours = make(tr("Hour"), CountsModel::Shares::Shown);
    m_keys = make(tr("Key"), CountsModel::Shares::Shown);
    m_applications = make(tr("Application"), CountsModel::Shares::Shown);
}

void TodayView::buildCards()
{
    m_figurePanel = new FigurePanel(m_facts, tr("keys"), FactsShown, FactsShownLow);
    m_figurePanel->setNote(tr(
        "Over all profiles, since midnight. Keys are counted three times over: per hour, per key "
        "and per application. Each of these leaves some out, so the largest of the three stands "
        "for each hour."));
    m_hourChart = new HourChart;
    const auto add = [this](const QString& name, const QString& title, QWidget* picture,
                            CountsModel* model) {
        auto* card = new Card(name, title, picture, model, m_cards);
        m_cardList.append(card);
        return card;
    };
    add(QStringLiteral("keysToday"), tr("Keys today"), m_figurePanel, m_facts);
    Card* hours = add(QStringLiteral("keysPerHour"), tr("Keys per hour"), m_hourChart, m_hours);
    hours->setTableOrder(CountsModel::LabelColumn, Qt::AscendingOrder);
    Card* keys = add(QStringLiteral("mostUsedKeys"), tr("Most used keys"),
                     new RankingView(m_keys, tr("The keys you press appear here while each key is "
                                                "counted by itself.")),
                     m_keys);
    keys->setExplanation(tr("Keys pressed today, by key"));
    Card* applications =
        add(QStringLiteral("mostUsedApplications"), tr("Most used applications"),
            new RankingView(m_applications, tr("The applications you type in appear here while "
                                               "input is counted per application.")),
            m_applications);
    applications->setExplanation(tr("Keys pressed today, by the application in front"));
    m_cardList.at(FigureCard)->setTableOrder(CountsModel::NoColumn, Qt::AscendingOrder);
    m_cardList.at(FigureCard)->setExplanation(tr("All profiles, since midnight"));
    hours->setExplanation(tr("Keys pressed today, by local hour"));

    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setSpacing(Theme::Gap);
    arrange();
}

void TodayView::arrange()
{
    // Six columns, so that the upper row can be parted in thirds and the lower one in halves.
    struct Place
    {
        int row, column, span;
    };

    static constexpr std::array<Place, 4> wide{{{0, 0, 2}, {0, 2, 4}, {1, 0, 3}, {1, 3, 3}}};
    static constexpr std::array<Place, 4> narrow{{{0, 0, 6}, {1, 0, 6}, {2, 0, 6}, {3, 0, 6}}};
    const bool isWide = width() >= TwoColumnsFrom;
    if (isWide == m_isWide) {
        return;
    }
    m_isWide = isWide;
    const std::array<Place, 4>& places = isWide ? wide : narrow;
    for (int card = 0; card < m_cardList.size(); ++card) {
        const Place& place = places.at(static_cast<size_t>(card));
        m_grid->addWidget(m_cardList.at(card), place.row, place.column, 1, place.span);
        m_cardList.at(card)->setMinimumHeight(isWide || card == FigureCard ? 0
                                                                           : CardHeightInOneColumn);
    }
    constexpr int columns = 6;
    for (int column = 0; column < columns; ++column) {
        m_grid->setColumnStretch(column, 1);
    }
    for (int row = 0; row < m_cardList.size(); ++row) {
        const bool fills = isWide ? row < 2 : row > 0;
        m_grid->setRowStretch(row, fills ? 1 : 0);
    }
    m_figurePanel->setForm(isWide ? FigurePanel::Form::Tall : FigurePanel::Form::Low);
}

void TodayView::setInputState(InputState state)
{
    if (state != m_state) {
        m_state = state;
        showNotice();
    }
}

bool TodayView::focusFilter()
{
    return std::any_of(m_cardList.begin(), m_cardList.end(),
                       [](Card* card) { return card->focusFilter(); });
}

void TodayView::exportData()
{
    if (m_cards->isHidden()) {
        return;
    }
    const auto focused = std::find_if(m_cardList.begin(), m_cardList.end(), [](const Card* card) {
        return card->isAncestorOf(QApplication::focusWidget());
    });
    (focused != m_cardList.end() ? *focused : m_cardList.at(FigureCard))->exportData();
}

void TodayView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    m_refresh.start();
    refresh();
}

void TodayView::hideEvent(QHideEvent* event)
{
    m_refresh.stop();
    QWidget::hideEvent(event);
}

void TodayView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    arrange();
}

std::optional<TodayView::Answer> TodayView::readFigures(History& history, const QDate& day,
                                                        qint64 knownVersion)
{
    const std::optional<qint64> version = history.version();
    if (!version) {
        return std::nullopt;
    }
    if (*version == knownVersion) {
        return Answer{.dataVersion = *version, .figures = std::nullopt};
    }
    std::optional<TodayFigures> figures = TodayQuery::run(history.connection(), day);
    if (!figures) {
        return std::nullopt;
    }
    return Answer{.dataVersion = *version, .figures = std::move(figures)};
}

void TodayView::refresh()
{
    if (m_asking) {
        return;
    }
    m_asking = true;
    const QDate today = QDate::currentDate();
    const qint64 known = m_figures.day == today ? m_dataVersion : -1;
    m_worker.ask<Answer>(
        QStringLiteral("today"), this,
        [today, known](History& history) { return readFigures(history, today, known); },
        [this](const std::optional<Answer>& answer) { take(answer); });
}

void TodayView::take(const std::optional<Answer>& answer)
{
    m_asking = false;
    const bool wasReadable = m_readable;
    m_readable = answer.has_value();
    m_dataVersion = answer ? answer->dataVersion : -1;
    m_refresh.setInterval(m_readable ? RefreshMs : RetryMs);
    const bool changed = answer && answer->figures && *answer->figures != m_figures;
    if (changed) {
        const bool newDay = answer->figures->day != m_figures.day;
        m_figures = *answer->figures;
        showFigures();
        if (newDay) {
            Q_EMIT dayChanged(m_figures.day);
        }
    }
    if (!changed && m_answered && QTime::currentTime().hour() != m_shownHour) {
        showHours();
    }
    if (changed || !m_answered || m_readable != wasReadable) {
        m_answered = true;
        showNotice();
    }
}

void TodayView::showFigures()
{
    QList<CountsModel::Row> keys;
    for (const TodayFigures::KeyCount& count : m_figures.keyCounts) {
        keys.append({.label = KeyNames::text(count.key), .toolTip = {}, .count = count.keys});
    }
    m_keys->setRows(keys);
    QList<CountsModel::Row> applications;
    for (const TodayFigures::ApplicationCount& count : m_figures.applications) {
        applications.append(
            {.label = nameOf(count.path), .toolTip = count.path, .count = count.keys});
    }
    m_applications->setRows(applications);
    showHours();
}

void TodayView::showHours()
{
    QHash<int, double> perHour;
    QList<CountsModel::Row> hours;
    qint64 busiest = 0;
    int busiestHour = 0;
    for (const TodayFigures::HourCount& count : m_figures.hours) {
        perHour.insert(count.hour, static_cast<double>(count.keys));
        hours.append({.label = Format::hour(count.hour), .toolTip = {}, .count = count.keys});
        if (count.keys > busiest) {
            busiest = count.keys;
            busiestHour = count.hour;
        }
    }
    m_hours->setRows(hours);
    m_hourChart->setDay(m_figures.day, {.name = tr("Keys")}, perHour, QDateTime::currentDateTime());
    m_shownHour = QTime::currentTime().hour();
    const qint64 activeHours = std::max<qint64>(1, m_figures.hours.size());
    const auto fact = [](const QString& label, qint64 count) {
        return CountsModel::Row{.label = label, .toolTip = {}, .count = count};
    };
    m_facts->setRows({fact(tr("Keys"), m_figures.keys),
                      fact(tr("This hour, from %1").arg(Format::hour(m_shownHour)),
                           static_cast<qint64>(perHour.value(m_shownHour))),
                      fact(tr("Busiest hour, from %1").arg(Format::hour(busiestHour)), busiest),
                      fact(tr("Different keys"), m_figures.keyCounts.size()),
                      fact(tr("Applications"), m_figures.applications.size()),
                      fact(tr("Hours with keys"), m_figures.hours.size()),
                      fact(tr("Average of these hours"), m_figures.keys / activeHours)});
}

QString TodayView::nameOf(const QString& path)
{
    QString& name = m_names[path];
    if (name.isEmpty() && m_applicationName) {
        name = m_applicationName(path);
    }
    if (name.isEmpty()) {
        name = QFileInfo(path).fileName();
    }
    return name.isEmpty() ? path : name;
}

void TodayView::showNotice()
{
    if (!m_answered) {
        return;
    }
    const bool hasFigures = m_figures.keys > 0;
    const auto figures = hasFigures ? TodayNotice::Figures::Shown : TodayNotice::Figures::None;
    const std::optional<Notice::Content> content =
        m_readable ? TodayNotice::forState(m_state, figures) : TodayNotice::unreadable();
    if (content) {
        m_notice->setContent(*content);
    }
    m_notice->setVisible(content.has_value());
    m_cards->setVisible(hasFigures);
    // Beside figures the notice is a banner; alone, it stands in the middle of the page.
    m_notice->setMinimumWidth(hasFigures ? 0 : LoneNoticeWidth);
    m_notice->setMaximumWidth(hasFigures ? QWIDGETSIZE_MAX : LoneNoticeWidth);
    m_pageLayout->setAlignment(m_notice, hasFigures ? Qt::Alignment() : Qt::AlignCenter);
}
