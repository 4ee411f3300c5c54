// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/MessageBanners.h"

#include "base/Format.h"
#include "ui/MessageBanner.h"
#include "ui/Theme.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr qsizetype MostBanners = 3;

} // namespace

MessageBanners::MessageBanners(QWidget* parent)
    : QWidget(parent)
    , m_layout(new QVBoxLayout(this))
    , m_more(new QLabel(this))
{
    setObjectName(QStringLiteral("banners"));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    m_more->setObjectName(QStringLiteral("moreMessages"));
    m_more->setPalette(Theme::mutedPalette(palette()));
    m_layout->setContentsMargins(Theme::Gap, 0, Theme::Gap, Theme::Gap);
    m_layout->setSpacing(Theme::Rhythm);
    m_layout->addWidget(m_more);
    hide();
}

void MessageBanners::setMessages(const QList<WindowMessage>& messages)
{
    const qsizetype shown = std::min(messages.size(), MostBanners);
    QMap<qint64, MessageBanner*> left = m_banners;
    for (qsizetype i = 0; i < shown; ++i) {
        const WindowMessage& message = messages.at(messages.size() - 1 - i);
        MessageBanner* banner = m_banners.value(message.id);
        if (banner == nullptr) {
            banner = makeBanner(message.id);
            m_banners.insert(message.id, banner);
        }
        banner->setMessage(message);
        left.remove(message.id);
        m_layout->insertWidget(static_cast<int>(i), banner);
    }
    for (auto gone = left.cbegin(); gone != left.cend(); ++gone) {
        m_banners.remove(gone.key());
        gone.value()->hide();
        gone.value()->deleteLater(); // It may be the one whose button was pressed.
    }
    m_more->setText(tr("%1 more").arg(Format::count(messages.size() - shown)));
    m_more->setVisible(messages.size() > shown);
    setVisible(!messages.isEmpty());
}

void MessageBanners::orderTabs(QWidget* previous)
{
    for (int i = 0; i < m_layout->count(); ++i) {
        if (auto* banner = qobject_cast<MessageBanner*>(m_layout->itemAt(i)->widget())) {
            previous = banner->orderTabs(previous);
        }
    }
}

MessageBanner* MessageBanners::makeBanner(qint64 id)
{
    auto* banner = new MessageBanner(this);
    connect(banner, &MessageBanner::dismissPressed, this, [this, id] { Q_EMIT dismissed(id); });
    connect(banner, &MessageBanner::linkPressed, this, &MessageBanners::linkRequested);
    return banner;
}

void MessageBanners::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange) {
        m_more->setPalette(Theme::mutedPalette(palette()));
    }
    QWidget::changeEvent(event);
}
