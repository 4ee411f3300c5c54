// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/View.h"

#include "ui/BusyVeil.h"
#include "ui/Card.h"
#include "ui/CountingNotice.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QFileInfo>
#include <QGridLayout>
#include <QScrollArea>

#include <algorithm>

namespace {

constexpr int RefreshMs = 1000;
constexpr int PreparingMs = 250; ///< While the history is being summed.
constexpr int RetryMs = 30'000;  ///< After a failure, each of which stands in the log.
constexpr int LoneNoticeWidth = 576;
constexpr int TwoColumnsFrom = 760; ///< Pixels that a view is wide in a window of 1000.
constexpr int Columns = 6;          ///< Rows can be parted in halves and in thirds.

} // namespace

View::View(ViewContext context, const QString& name, const QString& title, QWidget* parent)
    : QWidget(parent)
    , m_context(std::move(context))
    , m_notice(new Notice)
    , m_page(new QWidget)
    , m_grid(new QGridLayout(m_page))
    , m_veil(new BusyVeil(this))
{
    setObjectName(name);
    setAccessibleName(title);
    m_page->setObjectName(QStringLiteral("cards"));
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setSpacing(Theme::Gap);
    for (int column = 0; column < Columns; ++column) {
        m_grid->setColumnStretch(column, 1);
    }
    auto* content = new QWidget;
    m_pageLayout = new QVBoxLayout(content);
    m_pageLayout->setContentsMargins(Theme::Gap, 0, Theme::Gap, Theme::Gap);
    m_pageLayout->setSpacing(Theme::Gap);
    m_pageLayout->addWidget(m_notice);
    m_pageLayout->addWidget(m_page, 1);
    auto* scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("scroll"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(content);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroll);
    m_veil->raise();

    m_refresh.setInterval(RefreshMs);
    connect(m_notice, &Notice::buttonPressed, this, &View::onNoticeButton);
    connect(&m_refresh, &QTimer::timeout, this, &View::askIfDue);
    // Until the first answer neither figures nor their absence can be told.
    m_notice->hide();
    m_page->hide();
}

View::~View() = default;

Card* View::addCard(Card* card, const Place& place)
{
    m_cards.append({card, place});
    card->setParent(m_page);
    m_isWide.reset();
    arrange();
    return card;
}

void View::setPlace(const Card* card, const Place& place)
{
    for (Placed& placed : m_cards) {
        if (placed.card == card && placed.place != place) {
            placed.place = place;
            m_isWide.reset();
            arrange();
        }
    }
}

void View::arrange()
{
    const bool isWide = width() >= TwoColumnsFrom;
    if (isWide == m_isWide) {
        return;
    }
    m_isWide = isWide;
    for (int row = 0; row < m_grid->rowCount(); ++row) {
        m_grid->setRowStretch(row, 0);
    }
    for (int i = 0; i < m_cards.size(); ++i) {
        const auto& [card, place] = m_cards.at(i);
        const int row = isWide ? place.row : i;
        const int column = isWide ? place.column : 0;
        m_grid->addWidget(card, row, column, 1, isWide ? place.span : Columns);
        m_grid->setRowStretch(row, std::max(m_grid->rowStretch(row), place.stretch));
        card->setMinimumHeight(isWide ? place.height : std::max(place.height, place.narrowHeight));
    }
    arranged(isWide);
}

void View::arranged(bool) {}

void View::setScope(const HistoryScope& scope)
{
    if (scope == m_scope) {
        return;
    }
    m_scope = scope;
    askAnew();
}

void View::setInputState(InputState state)
{
    if (state != m_state) {
        m_state = state;
        showNotice();
    }
}

void View::askAnew()
{
    ++m_wanted;
    m_version = -1;
    m_isAsking = false;
    if (isVisible()) {
        askIfDue();
    }
}

void View::askIfDue()
{
    if (m_isAsking || !m_scope.last.isValid()) {
        return;
    }
    const bool isLive = m_scope.contains(QDate::currentDate());
    if (m_version >= 0 && !isLive) {
        return;
    }
    m_isAsking = true;
    if (m_version < 0 && m_isAnswered) {
        m_veil->begin();
    }
    refresh();
}

void View::take(std::optional<qint64> version, double preparedShare)
{
    m_isAsking = false;
    const bool isComplete = preparedShare >= 1;
    m_isReadable = version.has_value();
    m_version = version && isComplete ? *version : -1;
    m_isAnswered = true;
    m_refresh.setInterval(!m_isReadable ? RetryMs : isComplete ? RefreshMs : PreparingMs);
    if (isComplete) {
        m_veil->end();
    } else {
        m_veil->showProgress(preparedShare);
    }
    showNotice();
}

void View::setContent(bool hasFigures)
{
    m_hasFigures = hasFigures;
}

void View::showAtOnce(bool hasFigures)
{
    setContent(hasFigures);
    take(0, 1);
}

void View::onNoticeButton()
{
    Q_EMIT keyboardCountingRequested();
}

bool View::followsScope() const
{
    return true;
}

Notice::Content View::emptyNotice() const
{
    return {.icon = QStringLiteral("today"),
            .title = tr("Nothing was counted on these days"),
            .text = tr("Choose other days or another profile above."),
            .command = {},
            .button = {}};
}

std::optional<Notice::Content> View::countingNotice() const
{
    return CountingNotice::forState(m_state);
}

bool View::keepsCards() const
{
    return false;
}

void View::showNotice()
{
    if (!m_isAnswered) {
        return;
    }
    std::optional<Notice::Content> content =
        m_isReadable ? countingNotice() : CountingNotice::unreadable();
    if (!content && !m_hasFigures) {
        content = emptyNotice();
    }
    if (content) {
        m_notice->setContent(*content);
    }
    m_notice->setVisible(content.has_value());
    const bool hasCards = m_hasFigures || keepsCards();
    m_page->setVisible(hasCards);
    // Beside figures the notice is a banner; alone, it stands in the middle of the page.
    m_notice->setMinimumWidth(hasCards ? 0 : LoneNoticeWidth);
    m_notice->setMaximumWidth(hasCards ? QWIDGETSIZE_MAX : LoneNoticeWidth);
    m_pageLayout->setAlignment(m_notice, hasCards ? Qt::Alignment() : Qt::AlignCenter);
}

QString View::applicationName(const QString& path) const
{
    const QString name = m_context.applicationName ? m_context.applicationName(path) : QString();
    const QString file = QFileInfo(path).fileName();
    return !name.isEmpty() ? name : file.isEmpty() ? path : file;
}

bool View::focusFilter()
{
    return std::any_of(m_cards.begin(), m_cards.end(),
                       [](const Placed& placed) { return placed.card->focusFilter(); });
}

void View::exportData()
{
    if (m_page->isHidden() || m_cards.isEmpty()) {
        return;
    }
    const auto focused = std::find_if(m_cards.begin(), m_cards.end(), [](const Placed& placed) {
        return placed.card->isAncestorOf(QApplication::focusWidget());
    });
    (focused != m_cards.end() ? *focused : m_cards.constFirst()).card->exportData();
}

void View::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    m_refresh.start();
    askIfDue();
}

void View::hideEvent(QHideEvent* event)
{
    m_refresh.stop();
    QWidget::hideEvent(event);
}

void View::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    m_veil->setGeometry(rect());
    arrange();
}
