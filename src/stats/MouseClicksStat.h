// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/CountedRow.h"
#include "stats/InputStat.h"

#include <QList>
#include <QMap>
#include <QPointF>

/// Files clicks by hour and profile: in all, per button, per application, per button and
/// application; and, for the heat map, where each was. Thread: main.
class MouseClicksStat : public InputStat
{
    Q_OBJECT

public:
    /// Prepares its statements; `Database`, `LocalStats` must exist.
    MouseClicksStat(AbstractSystem* system, QObject* parent);

    void doFrequentUpdate(QDateTime now, bool ui) override;

private:
    using ButtonCounts = QMap<unsigned short, int>;

    void discardGathered() override;
    void writeTotal(int count, const Place& place);
    void writeButtons(const ButtonCounts& buttons, const Place& place);
    void writePoints(const QList<QPointF>& points, const Place& place);
    void writeApplication(int count, const ButtonCounts& buttons, const Place& place);

    CountedRow m_total;
    PreparedStatement m_insertPoint;
    CountedRow m_perButton;
    CountedRow m_perButtonAndApplication;
    CountedRow m_perApplication;
};
