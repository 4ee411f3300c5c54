// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QButtonGroup;
class QAbstractButton;
class QVBoxLayout;

/// The list of views at the window's left: an icon and a label each, or the icons alone. At its
/// foot the way to the settings.
/// Thread: main.
class SideBar : public QWidget
{
    Q_OBJECT

public:
    enum class Form
    {
        Full,
        Collapsed,
    };

    explicit SideBar(QWidget* parent = nullptr);

    /// Adds a view at the end, as number `index` of `chosen`. Its tool tip names the shortcut, Ctrl
    /// and the next digit.
    void addView(const QString& name, const QString& icon, const QString& label);

    /// Lets Tab move through the views and then to the buttons below them. To be called when the
    /// window is complete: Qt 6.4 puts nothing behind the last widget of a window.
    void orderTabs();

    void choose(int index);
    void setForm(Form form);
    Form form() const;

Q_SIGNALS:
    void chosen(int index);
    void settingsRequested();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void updateCollapseButton();

    QButtonGroup* m_views;
    QVBoxLayout* m_layout;
    QAbstractButton* m_settings;
    QAbstractButton* m_collapse;
    Form m_form = Form::Full;
};
