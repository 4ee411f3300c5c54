// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/PreparedStatement.h"
#include "stats/Stat.h"

#include <QSet>
#include <QString>

/// Keeps the table of known applications, to which what is filed per application refers: the path
/// and the name of each that was seen running. Thread: main.
class ApplicationsStat : public Stat
{
    Q_OBJECT

public:
    /// Prepares its statements; `Database` must exist.
    ApplicationsStat(AbstractSystem* system, QObject* parent);

    int getUpdateMilliSecondMod() const override;
    int getUpdateMilliSecondModUI() const override;
    int getFrequentUpdateMilliSecond() const override;
    int getFrequentUpdateMilliSecondUI() const override;
    int getInfrequentUpdateMilliSecond() const override;
    void doUpdate(QDateTime now, bool ui) override;

private:
    void addUnlessKnown(const QString& path);

    PreparedStatement m_selectKnown;
    PreparedStatement m_insert;
    QSet<QString> m_handled; ///< Looked up in this run, or since a cleaning.
};
