// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/applications/ExcludedButton.h"

#include <QMenu>

#include <utility>

ExcludedButton::ExcludedButton(QString text, const QString& toolTip,
                               std::function<QString(const QString& key)> name, QWidget* parent)
    : QToolButton(parent)
    , m_text(std::move(text))
    , m_name(std::move(name))
{
    setObjectName(QStringLiteral("excluded"));
    setAutoRaise(true);
    setFocusPolicy(Qt::StrongFocus);
    setPopupMode(QToolButton::InstantPopup);
    // Its arrow would lie on the text.
    setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; }"));
    setToolTip(toolTip);
    auto* menu = new QMenu(this);
    menu->setToolTipsVisible(true);
    connect(menu, &QMenu::aboutToShow, this, &ExcludedButton::fillMenu);
    setMenu(menu);
    hide();
}

void ExcludedButton::setExcluded(const QStringList& keys)
{
    m_keys = keys;
    m_keys.sort();
    setText(m_text.arg(m_keys.size()));
    setVisible(!m_keys.isEmpty());
}

void ExcludedButton::fillMenu()
{
    menu()->clear();
    for (const QString& key : std::as_const(m_keys)) {
        QString name = m_name(key);
        name.replace(QLatin1Char('&'), QLatin1String("&&")); // Not a mnemonic.
        QAction* action = menu()->addAction(tr("Count %1 again").arg(name));
        action->setObjectName(key);
        action->setToolTip(key);
        connect(action, &QAction::triggered, this, [this, key] { Q_EMIT inclusionWanted(key); });
    }
}
