// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <QWidget>

/// Dims the page below while its figures are being asked for, with a thin line along its upper
/// edge. Shows only where that takes longer than a moment. Lets the mouse through. Thread: main.
class BusyVeil : public QWidget
{
    Q_OBJECT

public:
    explicit BusyVeil(QWidget* parent);

    /// The page waits for an answer.
    void begin();

    /// What is shown is a part of the answer: this share of it, 0 to 1. It is not dimmed.
    void showProgress(double share);

    void end();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QTimer m_delay;
    double m_share = -1; ///< Negative where none is known.
};
