// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/account/ZurgeStatus.h"

#include <QTimer>
#include <QWidget>

class ActionTable;
class QAbstractItemModel;
class QLabel;
class QPushButton;

/// The button that begins a zurge with what there is to say about that, above the counts that it
/// would send. Follows the clock by itself. Thread: main.
class ZurgePanel : public QWidget
{
    Q_OBJECT

public:
    /// `counts` must live longer.
    explicit ZurgePanel(QAbstractItemModel* counts, QWidget* parent = nullptr);

    void setFacts(const ZurgeFacts& facts);

Q_SIGNALS:
    void zurgeRequested(); ///< Also while working offline.

private:
    void showStatus();

    ZurgeFacts m_facts;
    ZurgeStatus m_status;
    QPushButton* m_button;
    QLabel* m_hint;
    ActionTable* m_table;
    QTimer m_clock; ///< Runs where the status depends on the time.
};
