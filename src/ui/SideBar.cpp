// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/SideBar.h"

#include "ui/Icons.h"
#include "ui/SideBarButton.h"
#include "ui/Theme.h"

#include <QButtonGroup>
#include <QKeySequence>
#include <QPainter>
#include <QVBoxLayout>

namespace {

constexpr int FullWidth = 200;
constexpr int CollapsedWidth = 56;

QString withShortcut(const QString& label, const QKeySequence& shortcut)
{
    return QStringLiteral("%1 (%2)").arg(label, shortcut.toString(QKeySequence::NativeText));
}

} // namespace

SideBar::SideBar(QWidget* parent)
    : QWidget(parent)
    , m_views(new QButtonGroup(this))
    , m_layout(new QVBoxLayout(this))
    , m_settings(new SideBarButton(this))
    , m_collapse(new SideBarButton(this))
{
    setObjectName(QStringLiteral("sideBar"));
    setAccessibleName(tr("Views"));
    m_views->setExclusive(true);
    connect(m_views, &QButtonGroup::idClicked, this, &SideBar::chosen);

    m_settings->setObjectName(QStringLiteral("openSettings"));
    m_settings->setIcon(Icons::symbol(QStringLiteral("settings")));
    m_settings->setText(tr("Settings"));
    m_settings->setToolTip(withShortcut(m_settings->text(), Qt::CTRL | Qt::Key_Comma));
    connect(m_settings, &QAbstractButton::clicked, this, &SideBar::settingsRequested);
    m_collapse->setObjectName(QStringLiteral("collapse"));
    connect(m_collapse, &QAbstractButton::clicked, this,
            [this] { setForm(m_form == Form::Full ? Form::Collapsed : Form::Full); });
    m_layout->setContentsMargins(Theme::Rhythm, Theme::Rhythm, Theme::Rhythm, Theme::Rhythm);
    m_layout->setSpacing(Theme::Rhythm / 2);
    m_layout->addStretch();
    m_layout->addWidget(m_settings);
    m_layout->addWidget(m_collapse);
    setFixedWidth(FullWidth);
    updateCollapseButton();
}

void SideBar::addView(const QString& name, const QString& icon, const QString& label)
{
    const auto index = static_cast<int>(m_views->buttons().size());
    auto* button = new SideBarButton(this);
    button->setObjectName(name);
    button->setIcon(Icons::symbol(icon));
    button->setText(label);
    button->setCheckable(true);
    button->setToolTip(withShortcut(label, Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + index)));
    m_views->addButton(button, index);
    m_layout->insertWidget(index, button);
}

void SideBar::orderTabs()
{
    const QList<QAbstractButton*> views = m_views->buttons();
    for (qsizetype view = 1; view < views.size(); ++view) {
        setTabOrder(views.at(view - 1), views.at(view));
    }
    setTabOrder(views.constLast(), m_settings);
    setTabOrder(m_settings, m_collapse);
}

void SideBar::choose(int index)
{
    if (QAbstractButton* button = m_views->button(index)) {
        button->setChecked(true);
    }
}

void SideBar::setForm(Form form)
{
    if (form == m_form) {
        return;
    }
    m_form = form;
    setFixedWidth(form == Form::Full ? FullWidth : CollapsedWidth);
    updateCollapseButton();
}

SideBar::Form SideBar::form() const
{
    return m_form;
}

void SideBar::updateCollapseButton()
{
    const bool full = m_form == Form::Full;
    m_collapse->setIcon(
        Icons::symbol(full ? QStringLiteral("collapse") : QStringLiteral("expand")));
    m_collapse->setText(full ? tr("Collapse") : tr("Expand"));
    m_collapse->setToolTip(full ? tr("Show icons alone") : tr("Show icons and labels"));
}

void SideBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const Theme::Colours colours = Theme::colours(palette());
    painter.fillRect(rect(), colours.card);
    painter.setPen(colours.hairline);
    painter.drawLine(width() - 1, 0, width() - 1, height());
}
