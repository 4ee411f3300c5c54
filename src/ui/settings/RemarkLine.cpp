// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/settings/RemarkLine.h"

#include "ui/Icons.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>

#include <algorithm>

namespace {

constexpr int IconSize = 16;

/// A label as high as the longest of its texts would make it.
class RoomyLabel final : public QLabel
{
public:
    RoomyLabel(QStringList texts, QWidget* parent)
        : QLabel(parent)
        , m_texts(std::move(texts))
    {
    }

    int heightForWidth(int width) const override
    {
        int height = QLabel::heightForWidth(width);
        for (const QString& text : m_texts) {
            const QRect room(0, 0, width, QWIDGETSIZE_MAX);
            height =
                std::max(height, fontMetrics().boundingRect(room, Qt::TextWordWrap, text).height());
        }
        return height;
    }

private:
    QStringList m_texts;
};

} // namespace

RemarkLine::RemarkLine(const QString& name, Theme::TextSize size, const QStringList& texts,
                       QWidget* parent)
    : QWidget(parent)
    , m_size(size)
    , m_icon(new QLabel(this))
    , m_text(new RoomyLabel(texts, this))
{
    setObjectName(name);
    m_icon->setFixedSize(IconSize, IconSize);
    m_icon->hide();
    m_text->setObjectName(name + QStringLiteral("Text"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_text->setWordWrap(true);
    m_text->setAlignment(Qt::AlignTop);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::Rhythm);
    layout->addWidget(m_icon, 0, Qt::AlignTop);
    layout->addWidget(m_text, 1);
    applyTheme();
}

void RemarkLine::setRemark(const QString& text, const QString& icon)
{
    m_iconName = icon;
    m_text->setText(text);
    m_icon->setVisible(!icon.isEmpty());
    applyTheme();
}

QString RemarkLine::text() const
{
    return m_text->text();
}

void RemarkLine::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QWidget::changeEvent(event);
}

void RemarkLine::applyTheme()
{
    m_text->setFont(Theme::font(m_size));
    m_text->setPalette(m_iconName.isEmpty() ? Theme::mutedPalette(palette()) : palette());
    if (!m_iconName.isEmpty()) {
        m_icon->setPixmap(
            Icons::symbol(m_iconName).pixmap(QSize(IconSize, IconSize), devicePixelRatioF()));
    }
}
