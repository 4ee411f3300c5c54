// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Notice.h"

#include "ui/CopyField.h"
#include "ui/Icons.h"
#include "ui/Theme.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

namespace {

constexpr int IconSize = 32;

} // namespace

Notice::Notice(QWidget* parent)
    : QFrame(parent)
    , m_icon(new QLabel(this))
    , m_title(new QLabel(this))
    , m_text(new QLabel(this))
    , m_command(new CopyField(QStringLiteral("command"), tr("Command to run in a terminal"),
                              tr("Copy command"), CopyField::Ground::Card, this))
    , m_button(new QPushButton(this))
{
    setObjectName(QStringLiteral("notice"));
    m_title->setObjectName(QStringLiteral("noticeTitle"));
    m_text->setObjectName(QStringLiteral("noticeText"));
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_button->setObjectName(QStringLiteral("noticeButton"));
    m_button->setMinimumHeight(4 * Theme::Rhythm);
    connect(m_button, &QPushButton::clicked, this, &Notice::buttonPressed);

    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(Theme::Gap, Theme::Gap, Theme::Gap, Theme::Gap);
    layout->setHorizontalSpacing(Theme::Gap);
    layout->setVerticalSpacing(Theme::Rhythm);
    layout->addWidget(m_icon, 0, 0, 2, 1, Qt::AlignTop);
    layout->addWidget(m_title, 0, 1);
    layout->addWidget(m_text, 1, 1);
    layout->addWidget(m_command, 2, 1);
    layout->addWidget(m_button, 3, 1, Qt::AlignLeft);
    layout->setColumnStretch(1, 1);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    applyTheme();
}

void Notice::setContent(const Content& content)
{
    m_iconName = content.icon;
    m_title->setText(content.title);
    m_text->setText(content.text);
    m_command->setText(content.command);
    m_command->setVisible(!content.command.isEmpty());
    m_button->setText(content.button);
    m_button->setVisible(!content.button.isEmpty());
    setAccessibleName(content.title);
    setAccessibleDescription(content.text);
    applyTheme();
}

void Notice::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QFrame::changeEvent(event);
}

void Notice::applyTheme()
{
    m_title->setFont(Theme::font(Theme::TextSize::Title));
    if (!m_iconName.isEmpty()) {
        m_icon->setPixmap(
            Icons::symbol(m_iconName).pixmap(QSize(IconSize, IconSize), devicePixelRatioF()));
    }
}

void Notice::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    Theme::drawCard(painter, rect(), palette());
}
