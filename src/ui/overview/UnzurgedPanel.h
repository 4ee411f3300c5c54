// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QTimer>
#include <QWidget>

class FiguresModel;
class QLabel;

/// What is counted but not yet sent to an account, read once a second while it is shown. Thread:
/// main.
class UnzurgedPanel : public QWidget
{
    Q_OBJECT

public:
    /// Keeps the same figures in `model`, which must live longer, as two columns.
    explicit UnzurgedPanel(FiguresModel* model, QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    struct Line
    {
        QLabel* name;
        QLabel* value;
    };

    void follow();
    void applyTheme();

    FiguresModel* m_model;
    QTimer m_refresh;
    QList<Line> m_lines; ///< In the order of the measures.
    QLabel* m_meaning;
};
