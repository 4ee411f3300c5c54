// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class CountsModel;

/// The first rows of a model as bars, longest first: as many as there is room for. Thread: main.
class RankingView : public QWidget
{
    Q_OBJECT

public:
    /// `model` holds the largest count in its first row, and must live longer. `emptyText` stands
    /// where it has no rows.
    RankingView(CountsModel* model, QString emptyText, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int rowHeight() const;
    int shownRows() const;
    int labelWidth() const;
    QString describe(int row) const;
    void updateAccessibleText();
    void paintRow(QPainter& painter, int row, const QRect& area) const;

    CountsModel* m_model;
    QString m_emptyText;
};
