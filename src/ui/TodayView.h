// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/InputState.h"
#include "ui/TodayQuery.h"

#include <QHash>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <optional>

class Card;
class CountsModel;
class FigurePanel;
class History;
class HourChart;
class Notice;
class QGridLayout;
class QVBoxLayout;
class QueryWorker;

/// Finds the name to show for an application's executable path. Called on the main thread.
using ApplicationName = std::function<QString(const QString& path)>;

/// The keys of today: the count, its hours, the most used keys and applications. Follows the
/// database once a second while it is shown, and not at all while it is not. Thread: main.
class TodayView : public QWidget
{
    Q_OBJECT

public:
    TodayView(QueryWorker& worker, ApplicationName applicationName, QWidget* parent = nullptr);

    void setInputState(InputState state);

    /// Moves the focus to the filter of the first table shown, if there is one.
    bool focusFilter();

    /// Exports the data of the card that holds the focus, or of the first.
    void exportData();

Q_SIGNALS:
    void dayChanged(const QDate& day);
    void keyboardCountingRequested();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// What one question brought back.
    struct Answer
    {
        qint64 dataVersion = 0;
        std::optional<TodayFigures> figures; ///< Nothing where they are as they were.
    };

    static std::optional<Answer> readFigures(History& history, const QDate& day,
                                             qint64 knownVersion);

    void buildModels();
    void buildCards();
    void refresh();
    void take(const std::optional<Answer>& answer);
    void showFigures();
    void showHours();
    void showNotice();
    void arrange();
    QString nameOf(const QString& path);

    QueryWorker& m_worker;
    ApplicationName m_applicationName;
    QHash<QString, QString> m_names; ///< Of the applications met so far, by path.
    QTimer m_refresh;
    InputState m_state = InputState::Reading;
    TodayFigures m_figures;
    qint64 m_dataVersion = -1; ///< Of what is shown; negative where nothing is.
    int m_shownHour = 0;       ///< The hour that counts as the present one.
    bool m_asking = false;
    bool m_answered = false;
    bool m_readable = true;

    CountsModel* m_facts = nullptr;
    CountsModel* m_hours = nullptr;
    CountsModel* m_keys = nullptr;
    CountsModel* m_applications = nullptr;
    Notice* m_notice = nullptr;
    QWidget* m_cards = nullptr;
    QVBoxLayout* m_pageLayout = nullptr;
    QGridLayout* m_grid = nullptr;
    std::optional<bool> m_isWide; ///< As last arranged.
    FigurePanel* m_figurePanel = nullptr;
    HourChart* m_hourChart = nullptr;
    QList<Card*> m_cardList; ///< In reading order: figure, hours, keys, applications.
};
