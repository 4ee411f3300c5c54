// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wizard/WizardPage.h"

#include "ui/Icons.h"
#include "ui/Theme.h"

#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace {

constexpr int SideMargin = 5 * Theme::Rhythm;

} // namespace

WizardPage::WizardPage(const QString& name, const QString& title, QWidget* parent)
    : QWidget(parent)
    , m_title(new QLabel)
    , m_scroll(new QScrollArea(this))
{
    setObjectName(name);
    m_title->setObjectName(QStringLiteral("pageTitle"));
    m_title->setWordWrap(true);
    auto* content = new QWidget;
    m_body = new QVBoxLayout(content);
    m_body->setContentsMargins(SideMargin, SideMargin, SideMargin, Theme::Gap);
    m_body->setSpacing(Theme::Gap);
    m_body->addWidget(m_title);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    m_scroll->setWidget(content);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_scroll);
    setTitle(title);
    applyTheme();
}

QString WizardPage::nextText() const
{
    return tr("Next");
}

QString WizardPage::backText() const
{
    return tr("Back");
}

bool WizardPage::canGoOn() const
{
    return true;
}

void WizardPage::takeFocus() {}

void WizardPage::scroll(QAbstractSlider::SliderAction action)
{
    m_scroll->verticalScrollBar()->triggerAction(action);
}

void WizardPage::setTitle(const QString& title)
{
    m_title->setText(title);
    setAccessibleName(title);
}

QLabel* WizardPage::addText(const QString& text)
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    m_body->addWidget(label);
    return label;
}

QLabel* WizardPage::addCaption(const QString& text)
{
    QLabel* label = addText(text);
    m_captions.append(label);
    applyTheme();
    return label;
}

QPushButton* WizardPage::button(const QString& name, const QString& icon, const QString& text)
{
    auto* made = new QPushButton;
    if (!icon.isEmpty()) {
        made->setIcon(Icons::symbol(icon));
    }
    made->setObjectName(name);
    made->setMinimumHeight(4 * Theme::Rhythm);
    made->setAutoDefault(true); // Enter presses it while it holds the focus.
    setText(*made, text);
    return made;
}

void WizardPage::setText(QPushButton& button, const QString& text)
{
    button.setText(text);
    button.setMinimumWidth(button.sizeHint().width() + 2 * Theme::Rhythm);
}

void WizardPage::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QWidget::changeEvent(event);
}

void WizardPage::applyTheme()
{
    m_title->setFont(Theme::font(Theme::TextSize::Title));
    for (QLabel* caption : std::as_const(m_captions)) {
        caption->setFont(Theme::font(Theme::TextSize::Caption));
        caption->setPalette(Theme::mutedPalette(palette()));
    }
}
