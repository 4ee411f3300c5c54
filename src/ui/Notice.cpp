// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Notice.h"

#include "ui/Icons.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QFontDatabase>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QTimer>

namespace {

constexpr int IconSize = 32;

} // namespace

Notice::Notice(QWidget* parent)
    : QFrame(parent)
    , m_icon(new QLabel(this))
    , m_title(new QLabel(this))
    , m_text(new QLabel(this))
    , m_commandRow(new QWidget(this))
    , m_button(new QPushButton(this))
{
    setObjectName(QStringLiteral("notice"));
    buildCommand();
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
    layout->addWidget(m_commandRow, 2, 1);
    layout->addWidget(m_button, 3, 1, Qt::AlignLeft);
    layout->setColumnStretch(1, 1);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    applyTheme();
}

void Notice::buildCommand()
{
    m_command = new QLineEdit(m_commandRow);
    m_command->setObjectName(QStringLiteral("command"));
    m_command->setReadOnly(true);
    m_command->setAccessibleName(tr("Command to run in a terminal"));
    m_command->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_copy =
        new QPushButton(Icons::symbol(QStringLiteral("copy")), tr("Copy command"), m_commandRow);
    m_copy->setObjectName(QStringLiteral("copyCommand"));
    m_copy->setMinimumHeight(4 * Theme::Rhythm);
    m_copy->setMinimumWidth(m_copy->sizeHint().width());
    m_command->setMinimumHeight(4 * Theme::Rhythm);
    connect(m_copy, &QPushButton::clicked, this, &Notice::copyCommand);
    auto* layout = new QHBoxLayout(m_commandRow);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::Rhythm);
    layout->addWidget(m_command, 1);
    layout->addWidget(m_copy);
}

void Notice::setContent(const Content& content)
{
    m_iconName = content.icon;
    m_title->setText(content.title);
    m_text->setText(content.text);
    m_command->setText(content.command);
    m_command->setCursorPosition(0);
    m_commandRow->setVisible(!content.command.isEmpty());
    m_button->setText(content.button);
    m_button->setVisible(!content.button.isEmpty());
    setAccessibleName(content.title);
    setAccessibleDescription(content.text);
    applyTheme();
}

void Notice::copyCommand()
{
    constexpr int confirmationMs = 2000;
    QApplication::clipboard()->setText(m_command->text());
    m_copy->setText(tr("Copied"));
    QTimer::singleShot(confirmationMs, m_copy, [this] { m_copy->setText(tr("Copy command")); });
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
    m_command->setPalette(Theme::fieldPalette(palette()));
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
