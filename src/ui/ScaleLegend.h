// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/QuantityScale.h"

#include <QWidget>

/// Says which colour of the ramp stands for which count, and in which form: a bar with the counts
/// at its ends and its middle, after a caption. Thread: main.
class ScaleLegend : public QWidget
{
    Q_OBJECT

public:
    /// `unit` names what is counted: "Keys".
    explicit ScaleLegend(QString unit, QWidget* parent = nullptr);

    /// How the counts read; shortened where nothing is said.
    void setTextOf(QString (*textOf)(qint64 count));

    void setScale(const QuantityScale& scale);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString caption() const;
    int barLeft() const;
    void paintBar(QPainter& painter, const QRectF& bar) const;

    QString m_unit;
    QString (*m_textOf)(qint64 count);
    QuantityScale m_scale;
};
