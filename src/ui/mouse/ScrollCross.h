// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Utils.h"

#include <QHash>
#include <QWidget>

/// Scroll steps by direction: four bars that start in the middle and lie as the wheel turned.
/// Thread: main.
class ScrollCross : public QWidget
{
    Q_OBJECT

public:
    explicit ScrollCross(QWidget* parent = nullptr);

    /// A direction it lacks has none.
    void setSteps(const QHash<Utils::ScrollDirection, qint64>& steps);

    /// "Up", for example.
    static QString name(Utils::ScrollDirection direction);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// Where the parts of one direction lie.
    struct Arm
    {
        QPointF unit;            ///< Towards it, of length 1.
        QRectF label;            ///< Of two lines.
        Qt::Alignment alignment; ///< Across, within the label.
    };

    Arm arm(Utils::ScrollDirection direction) const;
    double longestArm() const;
    QString figure(Utils::ScrollDirection direction) const;
    QSizeF labelSize() const;
    void paintArm(QPainter& painter, Utils::ScrollDirection direction, qint64 largest) const;

    QHash<Utils::ScrollDirection, qint64> m_steps;
};
