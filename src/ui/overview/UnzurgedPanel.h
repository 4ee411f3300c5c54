// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Format.h"

#include <QList>
#include <QTimer>
#include <QWidget>

#include <optional>

class FiguresModel;
class QLabel;

/// What is counted but not yet sent to an account, read once a second while it is shown. Thread:
/// main.
class UnzurgedPanel : public QWidget
{
    Q_OBJECT

public:
    /// Keeps the same figures in `model`, which must live longer, as one row.
    explicit UnzurgedPanel(FiguresModel* model, QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    struct Line
    {
        QLabel* name = nullptr;
        QLabel* value = nullptr;
    };

    void follow();
    void showLine(qsizetype index, const QString& name, const QString& value);
    void applyTheme();

    FiguresModel* m_model;
    std::optional<Format::Lengths> m_lengths; ///< That the model is in.
    QTimer m_refresh;
    QList<Line> m_lines; ///< In the order of the measures.
    QLabel* m_meaning;
};
