// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class CountsModel;

/// The few rows of a model as bars with their counts and shares, in the order of the rows. Thread:
/// main.
class ShareBars : public QWidget
{
    Q_OBJECT

public:
    /// `model` shows shares and must live longer.
    explicit ShareBars(CountsModel* model, QWidget* parent = nullptr);

    /// What stands where all rows are zero.
    void setEmptyText(const QString& text);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int leastRowHeight() const;
    int rowHeight() const;
    void follow();
    QString figures(int row) const;
    void paintRow(QPainter& painter, int row, qint64 largest) const;

    CountsModel* m_model;
    QString m_emptyText;
};
