// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/RangeControl.h"

#include "ui/DaysDialog.h"
#include "ui/Icons.h"
#include "ui/Theme.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>

namespace {

constexpr qsizetype StepsKept = 32;
constexpr int ControlHeight = 4 * Theme::Rhythm;

} // namespace

RangeControl::RangeControl(QWidget* parent)
    : QWidget(parent)
    , m_back(new QToolButton(this))
    , m_button(new QPushButton(this))
{
    setObjectName(QStringLiteral("rangeControl"));
    m_back->setObjectName(QStringLiteral("rangeBack"));
    m_back->setIcon(Icons::symbol(QStringLiteral("back")));
    m_back->setToolTip(tr("Back to the days shown before (Alt+Left)"));
    m_back->setAccessibleName(tr("Back to the days shown before"));
    m_back->setFocusPolicy(Qt::StrongFocus);
    m_back->setMinimumHeight(ControlHeight);
    connect(m_back, &QToolButton::clicked, this, &RangeControl::goBack);
    m_button->setObjectName(QStringLiteral("range"));
    m_button->setIcon(Icons::symbol(QStringLiteral("calendar")));
    m_button->setMinimumHeight(ControlHeight);
    m_button->setToolTip(tr("Which days are shown"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::Rhythm);
    layout->addWidget(m_back);
    layout->addWidget(m_button);
    buildMenu();
    setRange(m_range);
}

void RangeControl::buildMenu()
{
    auto* menu = new QMenu(m_button);
    for (const DateRange::Preset preset : DateRange::presets()) {
        connect(menu->addAction(DateRange::name(preset)), &QAction::triggered, this,
                [this, preset] { select(preset); });
    }
    menu->addSeparator();
    QAction* choose = menu->addAction(tr("Choose days…"));
    choose->setObjectName(QStringLiteral("chooseDays"));
    connect(choose, &QAction::triggered, this, &RangeControl::chooseDays);
    m_button->setMenu(menu);
}

void RangeControl::chooseDays()
{
    const QDate today = QDate::currentDate();
    auto* dialog = new DaysDialog(m_range.first(today), m_range.last(today), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &DaysDialog::chosen, this, [this](const QDate& first, const QDate& last) {
        select(DateRange::between(first, last));
    });
    dialog->open();
}

void RangeControl::select(const DateRange& range)
{
    if (range == m_range) {
        return;
    }
    m_before.append(m_range);
    if (m_before.size() > StepsKept) {
        m_before.removeFirst();
    }
    setRange(range);
    Q_EMIT rangeChanged(range);
}

void RangeControl::goBack()
{
    if (m_before.isEmpty()) {
        return;
    }
    setRange(m_before.takeLast());
    Q_EMIT rangeChanged(m_range);
}

void RangeControl::setRange(const DateRange& range)
{
    m_range = range;
    m_button->setText(range.name());
    m_button->setAccessibleName(tr("Days shown: %1").arg(range.name()));
    m_back->setVisible(!m_before.isEmpty());
}
