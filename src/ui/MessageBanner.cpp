// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/MessageBanner.h"

#include "account/WindowMessages.h"
#include "ui/Icons.h"
#include "ui/PlainText.h"
#include "ui/Theme.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>

namespace {

constexpr int IconSize = 24;
constexpr qsizetype LongestText = 400; ///< Characters; three banners leave room for a view.
constexpr qsizetype LongestTitle = 80;
constexpr qsizetype LongestButton = 32;

QString shortened(const QString& text, qsizetype longest)
{
    const QString simple = text.simplified();
    return simple.size() <= longest ? simple : simple.left(longest - 1) + QChar(0x2026);
}

} // namespace

MessageBanner::MessageBanner(QWidget* parent)
    : QFrame(parent)
    , m_icon(new QLabel(this))
    , m_title(new QLabel(this))
    , m_text(new QLabel(this))
    , m_link(new QPushButton(this))
    , m_dismiss(new QToolButton(this))
{
    setObjectName(QStringLiteral("banner"));
    for (QLabel* label : {m_title, m_text}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        // Whatever it says, the window can be as small as without it.
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }
    m_text->setObjectName(QStringLiteral("bannerText"));
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_link->setObjectName(QStringLiteral("bannerLink"));
    m_link->setMinimumHeight(4 * Theme::Rhythm);
    m_dismiss->setObjectName(QStringLiteral("dismiss"));
    m_dismiss->setIcon(Icons::symbol(QStringLiteral("close")));
    m_dismiss->setAutoRaise(true);
    m_dismiss->setFocusPolicy(Qt::StrongFocus);
    m_dismiss->setToolTip(tr("Dismiss for good"));
    m_dismiss->setAccessibleName(tr("Dismiss this message for good"));
    connect(m_link, &QPushButton::clicked, this, [this] { Q_EMIT linkPressed(m_url); });
    connect(m_dismiss, &QToolButton::clicked, this, &MessageBanner::dismissPressed);

    auto* words = new QVBoxLayout;
    words->setSpacing(Theme::Rhythm / 2);
    words->addWidget(m_title);
    words->addWidget(m_text);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(Theme::Gap, Theme::Rhythm, Theme::Rhythm, Theme::Rhythm);
    layout->setSpacing(Theme::Gap);
    layout->addWidget(m_icon);
    layout->addLayout(words, 1);
    layout->addWidget(m_link);
    layout->addWidget(m_dismiss);
    applyTheme();
}

void MessageBanner::setMessage(const WindowMessage& message)
{
    const QString title = shortened(message.title, LongestTitle);
    const QString text = shortened(message.text, LongestText);
    setAccessibleName(title.isEmpty() ? tr("Message") : title);
    setAccessibleDescription(text);
    m_title->setText(PlainText::breakable(title));
    m_title->setVisible(!title.isEmpty());
    m_text->setText(PlainText::breakable(text));
    // An ampersand would mark a shortcut.
    m_link->setText(shortened(message.buttonText, LongestButton)
                        .replace(QLatin1Char('&'), QStringLiteral("&&")));
    m_link->setMinimumWidth(m_link->sizeHint().width() + 2 * Theme::Rhythm);
    m_url = message.link;
    m_link->setToolTip(PlainText::toolTip(m_url.toString()));
    m_link->setVisible(!message.buttonText.isEmpty() && m_url.isValid());
}

QWidget* MessageBanner::orderTabs(QWidget* previous)
{
    setTabOrder(previous, m_link);
    setTabOrder(m_link, m_dismiss);
    return m_dismiss;
}

void MessageBanner::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QFrame::changeEvent(event);
}

void MessageBanner::applyTheme()
{
    QFont bold = Theme::font(Theme::TextSize::Body);
    bold.setWeight(QFont::DemiBold);
    m_title->setFont(bold);
    m_icon->setPixmap(Icons::symbol(QStringLiteral("message"))
                          .pixmap(QSize(IconSize, IconSize), devicePixelRatioF()));
}

void MessageBanner::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    Theme::drawCard(painter, rect(), palette());
}
