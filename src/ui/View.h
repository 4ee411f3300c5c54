// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/InputState.h"
#include "ui/Notice.h"
#include "ui/QueryWorker.h"
#include "ui/ViewContext.h"
#include "ui/history/History.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <optional>

class BusyVeil;
class Card;
class QGridLayout;
class QVBoxLayout;

/// One page of the main window: cards on a grid, in two columns or one by the room there is, over
/// the days and the profile that the window's bar selects. Follows the database once a second while
/// it is shown and its days contain today, and not at all while it is hidden. Until an answer is
/// there, what was shown before stays, dimmed. Thread: main.
class View : public QWidget
{
    Q_OBJECT

public:
    /// `title` stands above the page and in the side bar; `name` becomes part of object names.
    View(ViewContext context, const QString& name, const QString& title, QWidget* parent = nullptr);
    ~View() override;

    void setScope(const HistoryScope& scope);
    void setInputState(InputState state);

    /// Moves the focus to the first filter there is; false where there is none.
    virtual bool focusFilter();

    /// Whether the page shows the days and the profile that the window's bar selects.
    virtual bool followsScope() const;

    /// Exports the data of the card that holds the focus, or of the first.
    void exportData();

Q_SIGNALS:
    /// The user wants to look at these days alone.
    void daysRequested(const QDate& first, const QDate& last);

    /// The user wants keyboard statistics on, which are switched off in the settings.
    void keyboardCountingRequested();

protected:
    /// Where a card lies in a grid of six columns while there is room for it.
    struct Place
    {
        int row = 0;
        int column = 0;
        int span = 6;
        int height = 0;         ///< At least, in pixels, in both arrangements.
        int stretch = 1;        ///< Of its row, in spare height.
        int narrowHeight = 288; ///< At least, where there is room for one column only.
        friend bool operator==(const Place&, const Place&) = default;
    };

    /// Puts a card at the end of the page, which takes it over.
    Card* addCard(Card* card, const Place& place);

    /// Gives a card of the page another place.
    void setPlace(const Card* card, const Place& place);

    /// Asks the history for the figures of the present scope; called when they may have changed.
    /// A view calls `ask` in here, once.
    virtual void refresh() = 0;

    /// Runs `query` on the worker, and `show` with its answer, unless the days or the profile
    /// changed meanwhile or nothing was written since the last answer. `show` returns whether there
    /// is anything to see; where not, the empty notice takes the place of the cards, or stands
    /// above them where the view keeps them.
    template <typename Answer>
    void ask(std::function<std::optional<Answer>(History&)> query,
             std::function<bool(const Answer&)> show);

    /// What the page says where nothing was counted.
    virtual Notice::Content emptyNotice() const;

    /// What the page says of the counting beside its figures; nothing where all is well.
    virtual std::optional<Notice::Content> countingNotice() const;

    /// The user pressed the notice's button. Asks for the keyboard to be counted.
    virtual void onNoticeButton();

    /// Shows the page as it stands: called by `refresh` of a page that asks the history nothing.
    void showAtOnce(bool hasFigures);

    /// Says anew what the page says of the counting.
    void showNotice();

    /// Whether the cards still tell something where nothing was counted.
    virtual bool keepsCards() const;

    /// Called when the page changes between two columns and one.
    virtual void arranged(bool isWide);

    /// Asks again at once, though nothing was written: what is asked for has changed.
    void askAnew();

    const HistoryScope& scope() const { return m_scope; }

    InputState inputState() const { return m_state; }

    const ViewContext& context() const { return m_context; }

    /// The name to show for an application.
    QString applicationName(const QString& path) const;

    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    template <typename Answer>
    struct Envelope
    {
        qint64 version = 0;
        double preparedShare = 1;
        std::optional<Answer> answer; ///< Nothing where nothing was written since.
    };

    struct Placed
    {
        Card* card = nullptr;
        Place place;
    };

    void arrange();
    void askIfDue();
    void take(std::optional<qint64> version, double preparedShare);
    void setContent(bool hasFigures);

    ViewContext m_context;
    HistoryScope m_scope;
    InputState m_state = InputState::Reading;
    QTimer m_refresh;
    qint64 m_version = -1; ///< Of what is shown; negative where it must be asked anew.
    quint64 m_wanted = 0;  ///< Counts up as what is asked for changes.
    bool m_isAsking = false;
    bool m_isAnswered = false; ///< At least once.
    bool m_isReadable = true;
    bool m_hasFigures = false;
    std::optional<bool> m_isWide; ///< As last arranged.
    QList<Placed> m_cards;
    Notice* m_notice;
    QWidget* m_page;
    QGridLayout* m_grid;
    QVBoxLayout* m_pageLayout = nullptr;
    BusyVeil* m_veil;
};

template <typename Answer>
void View::ask(std::function<std::optional<Answer>(History&)> query,
               std::function<bool(const Answer&)> show)
{
    const quint64 asked = m_wanted;
    const qint64 known = m_version;
    context().worker->ask<Envelope<Answer>>(
        objectName(), this,
        [query = std::move(query), known](History& history) -> std::optional<Envelope<Answer>> {
            const std::optional<qint64> version = history.version();
            if (!version) {
                return std::nullopt;
            }
            if (*version == known) {
                return Envelope<Answer>{.version = *version, .answer = std::nullopt};
            }
            std::optional<Answer> answer = query(history);
            if (!answer) {
                return std::nullopt;
            }
            return Envelope<Answer>{.version = *version,
                                    .preparedShare = history.preparedShare(),
                                    .answer = std::move(answer)};
        },
        [this, show = std::move(show), asked](const std::optional<Envelope<Answer>>& envelope) {
            if (asked != m_wanted) {
                return; // Something else is wanted, which a hidden view has not asked for yet.
            }
            if (envelope && envelope->answer) {
                setContent(show(*envelope->answer));
            }
            take(envelope ? std::optional(envelope->version) : std::nullopt,
                 envelope ? envelope->preparedShare : 1);
        });
}
