// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>

/// One entry of the side bar. It shows its text only as far as there is room for it. Thread: main.
class SideBarButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit SideBarButton(QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void focusInEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_focusByKey = false; ///< Focus that the mouse gave needs no frame.
};
