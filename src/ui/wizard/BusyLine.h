// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>
#include <QWidget>

/// A thin line in which a mark wanders while something is waited for; it rests where the desktop
/// asks for less movement. Costs nothing while it is hidden. Thread: main.
class BusyLine : public QWidget
{
    Q_OBJECT

public:
    explicit BusyLine(QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QTimer m_step;
    int m_position = 0; ///< Of the mark, in steps.
};
