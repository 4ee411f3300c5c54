// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/CopyField.h"

#include "ui/Icons.h"
#include "ui/PlainText.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

CopyField::CopyField(const QString& name, const QString& meaning, const QString& action,
                     Ground ground, QWidget* parent)
    : QWidget(parent)
    , m_line(new QLineEdit(this))
    , m_copy(new QPushButton(Icons::symbol(QStringLiteral("copy")), action, this))
    , m_action(action)
    , m_ground(ground)
{
    m_line->setObjectName(name);
    m_line->setReadOnly(true);
    m_line->setAccessibleName(meaning);
    m_line->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_line->setMinimumHeight(4 * Theme::Rhythm);
    m_copy->setObjectName(QStringLiteral("copy") + name.at(0).toUpper() + name.mid(1));
    m_copy->setMinimumHeight(4 * Theme::Rhythm);
    m_copy->setMinimumWidth(m_copy->sizeHint().width() + 2 * Theme::Rhythm);
    connect(m_copy, &QPushButton::clicked, this, &CopyField::copy);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::Rhythm);
    layout->addWidget(m_line, 1);
    layout->addWidget(m_copy);
    applyTheme();
}

void CopyField::setText(const QString& text)
{
    if (text == m_line->text()) {
        return; // Which leaves what is selected.
    }
    m_line->setText(text);
    m_line->setCursorPosition(0);
    m_line->setToolTip(PlainText::toolTip(text));
}

void CopyField::copy()
{
    constexpr int confirmationMs = 2000;
    QApplication::clipboard()->setText(m_line->text());
    m_copy->setText(tr("Copied"));
    QTimer::singleShot(confirmationMs, m_copy, [this] { m_copy->setText(m_action); });
}

void CopyField::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        applyTheme();
    }
    QWidget::changeEvent(event);
}

void CopyField::applyTheme()
{
    m_line->setPalette(m_ground == Ground::Card ? Theme::fieldPalette(palette()) : palette());
}
