// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/FiguresModel.h"

#include <QWidget>

class QLabel;

/// Who is signed in: names under captions, and the same as a table. A long name wraps rather than
/// being cut. Thread: main.
class IdentityPanel : public QWidget
{
    Q_OBJECT

public:
    struct Line
    {
        QString caption;
        QString value;
    };

    /// Has room for `lines` lines.
    explicit IdentityPanel(int lines, QWidget* parent = nullptr);

    void setLines(const QList<Line>& lines);

    /// What was set, as a table.
    FiguresModel* model() const { return m_model; }

protected:
    void changeEvent(QEvent* event) override;

private:
    struct Labels
    {
        QLabel* caption = nullptr;
        QLabel* value = nullptr;
    };

    void applyTheme();

    QList<Labels> m_lines;
    FiguresModel* m_model;
};
