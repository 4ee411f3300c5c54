// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/CountedRow.h"
#include "stats/InputStat.h"

#include <QList>

struct KeyCombination;

/// Files the released keys by hour and profile: in all, per key, per application, per key and
/// application; and key combinations, in all and per application.
///
/// The order in which keys were typed is destroyed before anything is stored, and no key is logged.
/// Thread: main.
class KeypressesStat : public InputStat
{
    Q_OBJECT

public:
    /// Prepares its statements; `Database`, `LocalStats` must exist.
    KeypressesStat(AbstractSystem* system, QObject* parent);

    void doFrequentUpdate(QDateTime now, bool ui) override;

private:
    /// One key that occurs in a batch. Plain value.
    struct KeyCount
    {
        Qt::Key key;
        int count;
    };

    void discardGathered() override;
    static QString combinationText(const KeyCombination& combination);
    static QList<KeyCount> shuffledCounts(QList<Qt::Key> keys);
    void writeCombinations(const Place& place);
    void writeKeys(const QList<KeyCount>& counts, const Place& place);
    void writeTotal(int count, const Place& place);
    void writeApplication(int count, const QList<KeyCount>& counts, const Place& place);
    void writeApplicationKeys(const QList<KeyCount>& counts, const Place& place);

    CountedRow m_total;
    CountedRow m_perKey;
    CountedRow m_perApplication;
    CountedRow m_perKeyAndApplication;
    CountedRow m_combination;
    CountedRow m_combinationPerApplication;
};
