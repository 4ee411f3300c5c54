// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/applications/ExcludedButton.h"

#include <QMenu>

#include <utility>

ExcludedButton::ExcludedButton(std::function<QString(const QString& path)> name, QWidget* parent)
    : QToolButton(parent)
    , m_name(std::move(name))
{
    setObjectName(QStringLiteral("excluded"));
    setAutoRaise(true);
    setFocusPolicy(Qt::StrongFocus);
    setPopupMode(QToolButton::InstantPopup);
    // Its arrow would lie on the text.
    setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; }"));
    setToolTip(tr("Applications that are no longer counted, to count them again"));
    auto* menu = new QMenu(this);
    menu->setToolTipsVisible(true);
    connect(menu, &QMenu::aboutToShow, this, &ExcludedButton::fillMenu);
    setMenu(menu);
    hide();
}

void ExcludedButton::setExcluded(const QStringList& paths)
{
    m_paths = paths;
    m_paths.sort();
    setText(tr("Excluded applications (%1)").arg(m_paths.size()));
    setVisible(!m_paths.isEmpty());
}

void ExcludedButton::fillMenu()
{
    menu()->clear();
    for (const QString& path : std::as_const(m_paths)) {
        QString name = m_name(path);
        name.replace(QLatin1Char('&'), QLatin1String("&&")); // Not a mnemonic.
        QAction* action = menu()->addAction(tr("Count %1 again").arg(name));
        action->setObjectName(path);
        action->setToolTip(path);
        connect(action, &QAction::triggered, this, [this, path] { Q_EMIT inclusionWanted(path); });
    }
}
