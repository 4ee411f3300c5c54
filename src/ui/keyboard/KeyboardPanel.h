// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/QuantityScale.h"
#include "ui/history/HistoryTypes.h"

#include <QWidget>

class KeyboardDrawing;
class KeyboardLayout;
class QLabel;
class ScaleLegend;

/// The drawn keyboard, the scale of its colours, and the keys that have no place on it with their
/// counts. Thread: main.
class KeyboardPanel : public QWidget
{
    Q_OBJECT

public:
    explicit KeyboardPanel(QWidget* parent = nullptr);

    void setKeyboard(const KeyboardLayout& keyboard);
    void setScaleForm(QuantityScale::Form form);

    /// Most used first.
    void setCounts(const QList<KeyCount>& counts);

protected:
    void changeEvent(QEvent* event) override;

private:
    void applyTheme();
    void showUnplaced();

    KeyboardDrawing* m_drawing;
    ScaleLegend* m_legend;
    QLabel* m_uncounted; ///< What a dashed cap means.
    QLabel* m_unplaced;
    QList<KeyCount> m_counts;
};
