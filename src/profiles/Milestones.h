// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <optional>

class Database;
class DSqlQuery;
class MilestoneTotals;

/// Tells the user each time an all-time total has grown by a chosen amount since the milestone last
/// fired, and logs it in the table `milestones_log`. Checked once a minute; a milestone checked
/// late fires once and starts again from the higher total.
///
/// Works on the one `Database`, which must be open until `stop`. Thread: main.
class Milestones : public QObject
{
    Q_OBJECT

public:
    /// A row of the table `milestones`.
    struct Milestone
    {
        qint64 id = 0;
        QString name;
        QDateTime timeCreated;
        QDateTime timeUpdated;
        QDateTime timeLastTriggered; ///< Invalid where it never fired.
        QString statsType;           ///< One of `MilestoneTotals::types`, or a later version's.
        qint64 statsAmount = 0;
        bool milestoneActive = true;
        qint64 lastStatsWhenTriggered = 0; ///< The total from which it counts.
        QString customMessage;             ///< What to tell the user; empty for a text of ours.
    };

    /// What the user chooses of a milestone.
    struct Choice
    {
        QString name;
        QString statsType;
        qint64 statsAmount = 0; ///< At least 1.
        QString customMessage;
    };

    /// A row of the table `milestones_log`.
    struct Hit
    {
        QString name;
        QDateTime timeTriggered;
        QString statsType;
        qint64 statsAmount = 0;
        qint64 statsWhenTriggered = 0;
    };

    static constexpr int All = -1;

    explicit Milestones(QObject* parent = nullptr);
    ~Milestones() override;

    /// Loads one milestone anew, or all. Those that cannot be checked are logged and ignored.
    void refreshSettings(int id);

    void stop();

    /// Lets `change` change the totals without counting that as growth: each milestone stays as far
    /// as it is, and none fires for it.
    void whileChangingTotals(const std::function<void()>& change);

    QList<Milestone> list() const; ///< In the order in which they were added.
    QList<Hit> log() const;        ///< The newest first.

    /// How far the milestone's total has grown since it last fired, in its unit: 0 to any number;
    /// null where that is not known. Milestones of one type share the query through `totals`.
    static std::optional<qint64> progress(const Milestone& milestone, MilestoneTotals& totals);

    /// Adds a milestone that counts from the current total. False where the choice is none that can
    /// be checked, or could not be stored.
    bool add(const Choice& choice);

    /// Changes a milestone; one whose type changes counts from the current total of the new type.
    bool update(qint64 id, const Choice& choice);
    bool remove(qint64 id);
    bool setActive(qint64 id, bool active);

public Q_SLOTS:
    void checkForMilestone();

Q_SIGNALS:
    void signalNeedTrayIconMessage(const QString& title, const QString& text);

    /// The list, or a milestone in it, changed; a hit is in the log.
    void signalMilestonesChanged();

private:
    static bool isChoice(const Choice& choice);
    static Milestone read(const DSqlQuery& query);
    bool changed(DSqlQuery& query, qint64 id);

    /// After the statistics were deleted, the total it counted from is out of reach for years.
    static void lowerBase(Milestone& milestone, MilestoneTotals& totals);
    static void setBase(Milestone& milestone, qint64 total);
    void fire(Milestone& milestone, qint64 total);
    static void logHit(const Milestone& milestone, qint64 total);

    QTimer m_timer;
    QHash<qint64, Milestone> m_milestones;
};
