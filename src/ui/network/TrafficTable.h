// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/CountsTable.h"

#include <QStringList>

class TrafficModel;

/// A table of a `TrafficModel`, filtered by all of its columns. Where rows can be excluded from
/// counting, so they are from the context menu, and counted again. Thread: main.
class TrafficTable : public CountsTable
{
    Q_OBJECT

public:
    /// What the context menu calls it; empty where rows cannot be excluded.
    struct Words
    {
        QString exclude;
        QString include;
    };

    /// `model` must live longer. Sorted by `sortColumn`, most first.
    TrafficTable(TrafficModel& model, const QString& title, int sortColumn, Words words,
                 QWidget* parent = nullptr);

    /// The keys of the selected rows, in the order shown.
    QStringList selectedKeys() const;

Q_SIGNALS:
    void exclusionWanted(const QStringList& keys);
    void inclusionWanted(const QStringList& keys);

protected:
    void fillMenu(QMenu& menu) override;

private:
    TrafficModel& m_model;
    Words m_words;
};
